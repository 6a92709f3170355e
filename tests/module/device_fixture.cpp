#include "device_fixture.h"

#include "support/eventually.h"
#include "support/test_request.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>
#include <zarn/configuration/schema.h>
#include <zarn/container/buffer.h>

#include <boost/json/parse.hpp>
#include <openssl/evp.h>

#include <array>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace zarn::test {

using web::response::Pending;

namespace {

/// MD5 as lower-case hex, computed by OpenSSL directly so that expected values do not come from the code under test.
std::string Md5(std::string const& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_md5(), nullptr);
    static constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned i = 0; i < length; ++i) {
        hex += digits[digest[i] >> 4U];
        hex += digits[digest[i] & 15U];
    }
    return hex;
}

constexpr char DefaultConfiguration[] = R"({
    "settings": {"web_port": 8080, "rtsp_port": 8554},
    "channels": {"1": {"name": "Gate"}, "2": {"name": "Yard"}}
})";

} // namespace

std::string Envelope(std::string const& body, std::string const& header) {
    std::ostringstream xml;
    xml << R"(<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
        << R"( xmlns:a="http://www.w3.org/2005/08/addressing" xmlns:tt="http://www.onvif.org/ver10/schema")"
        << R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl" xmlns:trt="http://www.onvif.org/ver10/media/wsdl")"
        << R"( xmlns:tr2="http://www.onvif.org/ver20/media/wsdl" xmlns:tev="http://www.onvif.org/ver10/events/wsdl")"
        << R"( xmlns:tan="http://www.onvif.org/ver20/analytics/wsdl" xmlns:wsnt="http://docs.oasis-open.org/wsn/b-2">)";
    if (!header.empty()) xml << "<s:Header>" << header << "</s:Header>";
    xml << "<s:Body>" << body << "</s:Body></s:Envelope>";
    return xml.str();
}

std::string MakeAuthorization(Sending const& sending, std::string const& method) {
    auto const& uri = sending.digestPath.empty() ? sending.path : sending.digestPath;
    std::string const nonce = "0123456789abcdef";
    std::string const cnonce = "fedcba98";
    auto const ha1 = Md5(sending.user + ":" + authentication::Realm + ":" + sending.password);
    auto const response = Md5(ha1 + ":" + nonce + ":00000001:" + cnonce + ":auth:" + Md5(method + ":" + uri));
    return "Digest username=\"" + sending.user + "\", realm=\"" + authentication::Realm + "\", nonce=\"" + nonce +
           "\", uri=\"" + uri + "\", algorithm=MD5, qop=auth, nc=00000001, cnonce=\"" + cnonce + "\", response=\"" +
           response + "\"";
}

std::string MakeOldAuthorization(Sending const& sending) {
    std::string const nonce = "0123456789abcdef";
    auto const ha1 = Md5(sending.user + ":" + authentication::Realm + ":" + sending.password);
    return "Digest username=\"" + sending.user + "\", realm=\"" + authentication::Realm + "\", nonce=\"" + nonce +
           "\", uri=\"" + sending.path + "\", response=\"" +
           Md5(ha1 + ":" + nonce + ":" + Md5("POST:" + sending.path)) + "\"";
}

DeviceFixture::DeviceFixture()
    : videos{{"1", {{1920, 1080}, "video/x-h264", 25, 1}}, {"2", {{1280, 720}, "video/x-h265", 30000, 1001}}},
      channelInfo([this](std::string const& id) {
          auto const video = videos.find(id);
          return video == videos.end() ? meta::data::VideoInfo() : video->second;
      }),
      identity(utilities::name::Config::Product{.manufacturer = "Zarnsuite",
                                                .model = "Analytics Server",
                                                .firmware = "1.2.3",
                                                .hardware = "rack",
                                                .location = "Hall 3",
                                                .name = "North gate"}) {
    engine.SetHa1(authentication::MakeHa1("admin", authentication::Realm, "secret"));
    Configure(DefaultConfiguration);
}

void DeviceFixture::Configure(std::string const& json) {
    using configuration::Schema;
    root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema("settings.web_port", std::uint16_t{80}, "web port"),
                  Schema("settings.rtsp_port", std::uint16_t{554}, "RTSP port"),
                  Schema::Collection("channels", {Schema("name", "", "name")}, "channels")});
    root->FromJson(boost::json::parse(json));
}

service::onvif::Manager& DeviceFixture::Manager() {
    if (!manager) {
        manager = std::make_unique<service::onvif::Manager>(&engine, root, channelInfo, identity);
        manager->UpdateServerPort(8080);
    }
    return *manager;
}

void DeviceFixture::EndManager() { manager.reset(); }

void DeviceFixture::ReplaceManager() {
    EndManager();
    Manager();
}

std::shared_ptr<web::Request> DeviceFixture::MakeRequest(std::string const& body, Sending const& sending) {
    auto fields = sending.fields;
    fields.emplace("Host", "device");
    fields.emplace("Content-Type", "application/soap+xml; charset=utf-8");
    if (sending.authenticated) fields.emplace("Authorization", MakeAuthorization(sending));
    return std::make_shared<TestRequest>(sending.method, sending.path, std::move(fields), body);
}

Pending::Data DeviceFixture::WaitFor(Pending& pending) {
    std::optional<Pending::Data> data;
    if (!Eventually([&] {
            data = pending.GetData();
            return data->GetState() == web::response::State::Complete;
        })) {
        throw std::runtime_error("no answer within a minute");
    }
    return *data;
}

Reply DeviceFixture::Post(std::string const& body, Sending const& sending) {
    return ToReply(WaitFor(*Manager().Post(MakeRequest(body, sending))));
}

Reply DeviceFixture::ToReply(Pending::Data const& data) {
    std::string text;
    for (auto const& chunk : data.GetBody()) text += chunk->ToStringView();
    return {static_cast<int>(data.GetStatus()), data.GetFields(), text};
}

Reply DeviceFixture::Ask(std::string const& operation, Sending const& sending) {
    return Post(Envelope(operation, sending.header), sending);
}

Reply DeviceFixture::AskAnonymously(std::string const& operation) { return Ask(operation, {.authenticated = false}); }

} // namespace zarn::test
