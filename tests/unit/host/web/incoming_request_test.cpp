#include "host/web/incoming_request.h"

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using protocol::network::http::Method;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

IncomingRequest::Message MakeMessage(std::string_view method = "POST") {
    IncomingRequest::Message message;
    message.method_string(method);
    message.target("/onvif/device_service?a");
    return message;
}

TEST(IncomingRequest, ReturnsMethodTargetAndBody) {
    auto message = MakeMessage();
    message.body() = "content";
    IncomingRequest const request(std::move(message));
    EXPECT_EQ(request.GetMethod(), Method::Post);
    EXPECT_EQ(request.GetTarget(), "/onvif/device_service?a");
    EXPECT_EQ(request.GetBody(), "content");
}

TEST(IncomingRequest, GivesAnAbsoluteTargetInOriginForm) {
    auto message = MakeMessage();
    message.target("http://host:80/a?b");
    EXPECT_EQ(IncomingRequest(std::move(message)).GetTarget(), "/a?b");
}

TEST(IncomingRequest, KeepsTheClientsSpellingOfFields) {
    auto message = MakeMessage();
    message.set("host", "h");
    message.set("SOAPAction", "\"x\"");
    IncomingRequest const request(std::move(message));
    EXPECT_THAT(request.GetFields(), UnorderedElementsAre(Pair("host", "h"), Pair("SOAPAction", "\"x\"")));
}

TEST(IncomingRequest, JoinsTheValuesOfARepeatedField) {
    auto message = MakeMessage();
    message.insert("Accept", "a");
    message.insert("accept", "b");
    message.insert("ACCEPT", "c");
    IncomingRequest const request(std::move(message));
    EXPECT_THAT(request.GetFields(), UnorderedElementsAre(Pair("Accept", "a, b, c")));
    EXPECT_EQ(request.FindField("accept"), "a, b, c");
}

TEST(IncomingRequest, JoinsEachOfSeveralRepeatedFields) {
    auto message = MakeMessage();
    for (auto const* value : {"", "1", "2"}) {
        message.insert("X-A", value);
        message.insert("Via", value);
    }
    IncomingRequest const request(std::move(message));
    EXPECT_THAT(request.GetFields(), UnorderedElementsAre(Pair("Via", ", 1, 2"), Pair("X-A", ", 1, 2")));
}

TEST(IncomingRequest, FindsAFieldWithoutRegardToCase) {
    auto message = MakeMessage();
    message.set("AUTHORIZATION", "a");
    IncomingRequest const request(std::move(message));
    EXPECT_EQ(request.FindField("Authorization"), "a");
    EXPECT_EQ(request.FindField("Host"), "");
}

TEST(IncomingRequest, RemovesBlanksBeforeSeparatorsInCredentials) {
    auto message = MakeMessage();
    message.set("authorization", "Digest qop=auth , nc = 1");
    message.set("X-Other", "a , b");
    IncomingRequest const request(std::move(message));
    EXPECT_THAT(request.GetFields(),
                UnorderedElementsAre(Pair("authorization", "Digest qop=auth, nc= 1"), Pair("X-Other", "a , b")));
}

TEST(IncomingRequest, OmitsHopByHopFields) {
    auto message = MakeMessage();
    for (auto const* name : {"Keep-Alive", "EXPECT", "TE", "Trailer", "transfer-encoding", "Upgrade",
                             "Proxy-Connection", "Proxy-Authorization", "X-Hop"}) {
        message.insert(name, "x");
    }
    message.set("Connection", "close, x-hop");
    IncomingRequest const request(std::move(message));
    EXPECT_THAT(request.GetFields(), IsEmpty());
}

TEST(IncomingRequest, MapsAnUnknownMethodToConnect) {
    EXPECT_EQ(IncomingRequest(MakeMessage("BREW")).GetMethod(), Method::Connect);
    EXPECT_EQ(IncomingRequest(MakeMessage("post")).GetMethod(), Method::Connect);
    EXPECT_EQ(IncomingRequest(MakeMessage("PATCH")).GetMethod(), Method::Patch);
}

} // namespace
} // namespace zarn::host::web
