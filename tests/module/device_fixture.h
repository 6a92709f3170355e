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

/// How a request is sent.
struct Sending {
    std::string path = "/onvif/device_service";
    std::string user = "admin";
    std::string password = "secret";
    std::string digestPath = {}; ///< the path that the digest is made for; empty: the request's
    std::string header = {};     ///< content of the SOAP header; empty: no header
    std::map<std::string, std::string> fields = {};
    bool authenticated = true; ///< with an Authorization field
    protocol::network::http::Method method = protocol::network::http::Method::Post;
};

/// A device of two channels, "Gate" (1) and "Yard" (2), that answers whole requests with whole responses: a real
/// manager on the host's real libraries. Ports: web 8080, RTSP 8554. The account's password is "secret".
class DeviceFixture : public testing::Test {
protected:
    DeviceFixture();

    /// Makes the device. Called by the first request; before it a test may change what the device is made of.
    service::onvif::Manager& Manager();

    /// Lets the device's manager go. The next request makes another.
    void EndManager();

    /// Lets the device's manager go and makes another.
    void ReplaceManager();

    /// Sends a request whose body is this element, with right credentials.
    Reply Ask(std::string const& operation, Sending const& sending = {});

    /// Sends it without credentials.
    Reply AskAnonymously(std::string const& operation);

    /// Sends a whole HTTP body and returns what the pending response yields in the end.
    Reply Post(std::string const& body, Sending const& sending = {});

    /// The request that Post sends.
    static std::shared_ptr<web::Request> MakeRequest(std::string const& body, Sending const& sending = {});

    /// Asks the pending response until it is complete. Throws std::runtime_error when that takes more than a minute.
    static web::response::Pending::Data WaitFor(web::response::Pending& pending);

    /// The reply that a complete answer is.
    static Reply ToReply(web::response::Pending::Data const& data);

    /// Replaces the configuration by this JSON: {"settings": ..., "channels": ...}.
    void Configure(std::string const& json);

    ZarnAuthenticationEngine engine;
    std::shared_ptr<configuration::node::Root> root;

    /// The video descriptions of the channels, by id.
    std::map<std::string, meta::data::VideoInfo> videos;

    /// What the device asks for a channel's description: it looks the id up in `videos`, an unknown one has none.
    /// Called on the device's threads.
    std::function<meta::data::VideoInfo(std::string const&)> channelInfo;

    utilities::name::Config identity;

private:
    std::unique_ptr<service::onvif::Manager> manager;
};

/// A SOAP 1.2 envelope with the namespaces of all services.
std::string Envelope(std::string const& body, std::string const& header = {});

/// The value of an Authorization field that answers a challenge with right or wrong credentials.
std::string MakeAuthorization(Sending const& sending, std::string const& method = "POST");

/// The same in the older form, which has neither a quality of protection nor a nonce of the client (RFC 2069).
std::string MakeOldAuthorization(Sending const& sending);

} // namespace zarn::test
