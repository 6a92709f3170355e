#pragma once

#include "reply.h"

#include <service/onvif/manager.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/node/root.h>
#include <zarn/meta/data/video_info.h>
#include <zarn/protocol/network/http/method.h>
#include <zarn/utilities/name/config.h>
#include <zarn/web/request.h>
#include <zarn/web/response/pending.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace zarn::test {

/// How to send a request.
struct Sending {
    std::string path = "/onvif/device_service";
    std::string user = "admin";
    std::string password = "secret";
    std::string digestPath = {}; ///< path covered by the digest; empty: the request's path
    std::string header = {};     ///< content of the SOAP header; empty: no header
    std::map<std::string, std::string> fields = {};
    bool authenticated = true; ///< send an Authorization field
    protocol::network::http::Method method = protocol::network::http::Method::Post;
};

/// A device with two channels, "Gate" (1) and "Yard" (2): a real manager on the host's real libraries that answers
/// complete requests with complete responses. Ports: web 8080, RTSP 8554. The account's password is "secret".
class DeviceFixture : public testing::Test {
protected:
    DeviceFixture();

    /// Creates the manager on first use. Until then, a test may change its inputs.
    service::onvif::Manager& Manager();

    /// Destroys the manager. The next request creates another.
    void EndManager();

    /// Destroys the manager and creates another.
    void ReplaceManager();

    /// Sends a request with this element as its body and valid credentials.
    Reply Ask(std::string const& operation, Sending const& sending = {});

    /// Sends it without credentials.
    Reply AskAnonymously(std::string const& operation);

    /// Sends a complete HTTP body and returns the final response.
    Reply Post(std::string const& body, Sending const& sending = {});

    /// The request that Post sends.
    static std::shared_ptr<web::Request> MakeRequest(std::string const& body, Sending const& sending = {});

    /// Polls the pending response until it is complete. Throws std::runtime_error after a minute.
    static web::response::Pending::Data WaitFor(web::response::Pending& pending);

    /// Converts a complete answer to a Reply.
    static Reply ToReply(web::response::Pending::Data const& data);

    /// Replaces the configuration by this JSON: {"settings": ..., "channels": ...}.
    void Configure(std::string const& json);

    ZarnAuthenticationEngine engine;
    std::shared_ptr<configuration::node::Root> root;

    /// The video descriptions of the channels, by id.
    std::map<std::string, meta::data::VideoInfo> videos;

    /// Callback by which the device asks for a channel's description. The default looks the id up in `videos`; an
    /// unknown id has no video. Runs on the device's threads.
    std::function<meta::data::VideoInfo(std::string const&)> channelInfo;

    utilities::name::Config identity;

private:
    std::unique_ptr<service::onvif::Manager> manager;
};

/// A SOAP 1.2 envelope with the namespaces of all services.
std::string Envelope(std::string const& body, std::string const& header = {});

/// An Authorization value that answers a challenge, with the credentials described by `sending`.
std::string MakeAuthorization(Sending const& sending, std::string const& method = "POST");

/// The same in the older form without qop and cnonce (RFC 2069).
std::string MakeOldAuthorization(Sending const& sending);

} // namespace zarn::test
