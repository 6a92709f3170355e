#include "support/digest_client.h"
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/raw_connection.h"

#include <boost/json/value.hpp>
#include <gmock/gmock.h>

#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::Pair;

/// A client that logs in and keeps its challenge. Tests may change its credentials.
class Client {
public:
    explicit Client(HostProcess const& host) : connection(host.GetPort()) {
        credentials.password = host.GetPassword();
        credentials.nonce = ReadChallenge(Ask("")).at("nonce");
    }

    /// The answer to an operation with this Authorization value; empty: no such field.
    RawResponse Ask(std::string const& authorization, std::string const& operation = "GetDeviceInformation") {
        return Send(Write(authorization, operation));
    }

    /// The answer to an operation with the current credentials.
    RawResponse AskWithCredentials() { return Ask(credentials.Write()); }

    /// Sends a request unchanged.
    RawResponse Send(std::string const& request) { return connection.Exchange(request); }

    static std::string Write(std::string const& authorization, std::string const& operation = "GetDeviceInformation") {
        return MakeSoapRequest(operation, authorization.empty() ? "" : "Authorization: " + authorization + "\r\n");
    }

    DigestCredentials credentials;

private:
    RawConnection connection;
};

MATCHER(SaysStale, "") {
    return arg.status == 401U && testing::Matches(Contains(Pair("stale", "true")))(ReadChallenge(arg));
}

MATCHER(IsPlainRefusal, "") {
    return arg.status == 401U && testing::Matches(Not(Contains(Key("stale"))))(ReadChallenge(arg));
}

TEST(Authentication, AcceptsSeveralRequestsWithOneChallenge) {
    HostProcess const host;
    Client client(host);
    for (auto const* count : {"00000001", "00000002", "00000005", "00000003"}) {
        client.credentials.count = count;
        EXPECT_EQ(client.AskWithCredentials().status, 200U) << count;
    }
    client.credentials.cnonce = "another";
    EXPECT_EQ(client.AskWithCredentials().status, 200U);
}

TEST(Authentication, AcceptsRepeatedDigestsWithoutQop) {
    HostProcess const host;
    Client client(host);
    client.credentials.qop = "";
    for (int request = 0; request < 3; ++request) EXPECT_EQ(client.AskWithCredentials().status, 200U);
}

TEST(Authentication, AcceptsOneChallengeOnAllPaths) {
    HostProcess const host;
    Client client(host);
    EXPECT_EQ(client.AskWithCredentials().status, 200U);
    auto credentials = client.credentials;
    credentials.method = "GET";
    credentials.uri = "/snapshot/1/latest.jpeg";
    auto const get = "GET " + credentials.uri + " HTTP/1.1\r\nHost: h\r\nAuthorization: ";
    EXPECT_THAT(client.Send(get + credentials.Write() + "\r\n\r\n"), SaysStale()); // the nonce count was already used
    credentials.count = "00000002";
    EXPECT_EQ(client.Send(get + credentials.Write() + "\r\n\r\n").status, 503U); // no picture available
}

TEST(Authentication, RejectsAReplayedRequest) {
    HostProcess const host;
    Client client(host);
    std::string const operation = R"(e:CreatePullPointSubscription xmlns:e="http://www.onvif.org/ver10/events/wsdl")";
    auto const captured = Client::Write(client.credentials.Write(), operation);
    auto const countSubscriptions = [&] {
        return host.GetHealth().at("events").at("subscriptions").at("count").to_number<int>();
    };
    EXPECT_EQ(client.Send(captured).status, 200U);
    EXPECT_EQ(countSubscriptions(), 1);
    EXPECT_THAT(client.Send(captured), SaysStale());
    EXPECT_THAT(RawConnection(host.GetPort()).Exchange(captured), SaysStale());
    EXPECT_EQ(countSubscriptions(), 1);
    client.credentials.count = "00000002";
    EXPECT_EQ(client.Ask(client.credentials.Write(), operation).status, 200U);
    EXPECT_EQ(countSubscriptions(), 2);
}

TEST(Authentication, RejectsAReplayedEvent) {
    HostProcess const host;
    Client client(host);
    std::string const body = R"({"type": "presence"})";
    client.credentials.uri = "/api/events";
    auto const captured = "POST /api/events HTTP/1.1\r\nHost: h\r\nAuthorization: " + client.credentials.Write() +
                          "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    EXPECT_EQ(client.Send(captured).status, 202U);
    EXPECT_THAT(client.Send(captured), SaysStale());
}

TEST(Authentication, AcceptsADigestForATargetWithAQueryOnlyOnce) {
    HostProcess const host;
    Client client(host);
    auto const ask = [&] {
        auto request = Client::Write(client.credentials.Write());
        request.replace(request.find("/onvif/device_service HTTP"), 21, "/onvif/device_service?a=b");
        return client.Send(request);
    };
    EXPECT_EQ(ask().status, 200U);
    EXPECT_THAT(ask(), SaysStale());
    client.credentials.count = "00000002";
    client.credentials.uri += "?a=b";
    EXPECT_EQ(ask().status, 200U);
    EXPECT_THAT(ask(), SaysStale());
}

TEST(Authentication, AnswersAnUnknownNonceWithANewChallenge) {
    HostProcess const host;
    HostProcess const other;
    Client client(host);
    client.credentials.nonce = "";
    EXPECT_THAT(client.AskWithCredentials(), SaysStale());
    client.credentials.nonce = Client(other).credentials.nonce;
    auto const refusal = client.AskWithCredentials();
    EXPECT_THAT(refusal, SaysStale());
    client.credentials.nonce = ReadChallenge(refusal).at("nonce");
    EXPECT_EQ(client.AskWithCredentials().status, 200U);
}

TEST(Authentication, AnswersAnExpiredNonceWithANewChallenge) {
    HostProcess host({.arguments = {"--set", "settings.authentication.nonce_seconds=1"}});
    Client client(host);
    RawResponse refusal;
    int count = 0;
    auto const isRefused = [&] {
        client.credentials.count = std::to_string(++count);
        refusal = client.AskWithCredentials();
        return refusal.status != 200U;
    };
    ASSERT_TRUE(Eventually(isRefused));
    EXPECT_THAT(refusal, SaysStale());
    // On a busy machine the new nonce may expire as well; then retry with the next one.
    EXPECT_TRUE(Eventually([&] {
        client.credentials.nonce = ReadChallenge(refusal).at("nonce");
        return !isRefused();
    }));
}

TEST(Authentication, AppliesTheConfiguredNonceLifetime) {
    HostProcess host;
    Client client(host);
    std::string configuration = HostProcess::TwoDescribedChannels;
    configuration.insert(configuration.find("\"web_port\""), R"("authentication": {"nonce_seconds": 1}, )");
    host.GetFolder().Write("config.json", configuration);
    host.GetProcess().Signal(SIGHUP);
    int count = 0;
    unsigned status = 200U;
    EXPECT_TRUE(Eventually([&] {
        client.credentials.count = std::to_string(++count);
        status = client.AskWithCredentials().status;
        return status != 200U;
    }));
    EXPECT_EQ(status, 401U);
}

class CurlOverTheLifeOfANonce : public testing::Test {
protected:
    /// Runs curl with a digest login and returns its output about the answers.
    std::string Curl(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"curl", "-sS", "-v", "--digest", "-u", "admin:" + host.GetPassword(), "-w",
                                             "status %{http_code}\n"});
        Process curl(std::move(arguments));
        EXPECT_EQ(curl.Wait(), 0) << curl.GetLog();
        log = curl.GetLog();
        return curl.GetOutput();
    }

    HostProcess host{{.arguments = {"--set", "settings.authentication.nonce_seconds=1"}}};
    std::string log;
};

TEST_F(CurlOverTheLifeOfANonce, SucceedsWithTheNextRequest) {
    auto const request = Client::Write("");
    auto const url = host.GetUrl() + "/onvif/device_service";
    // One transfer every 1.5 seconds.
    EXPECT_EQ(Curl({"-o", "/dev/null", "--rate", "40/m", "-H", "Content-Type: application/soap+xml", "--data-binary",
                    request.substr(request.find("\r\n\r\n") + 4), url, "-o", "/dev/null", url}),
              "status 200\nstatus 200\n");
}

TEST_F(CurlOverTheLifeOfANonce, SucceedsAfterBeginningWithAnExpiredChallenge) {
    // The retry reuses the challenge of the first attempt. 503: login succeeded, but no picture is available.
    EXPECT_THAT(Curl({"--retry", "1", "--retry-delay", "2", host.GetUrl() + "/snapshot/1/latest.jpeg"}),
                testing::EndsWith("status 503\n"));
    EXPECT_THAT(log, testing::ContainsRegex("stale=true(.*\n)*.*503 Service Unavailable"));
}

class Guessing : public testing::Test {
protected:
    static constexpr unsigned Limit = 3;

    HostProcess host{{.arguments = {"--set", "settings.limits.failed_logins_per_minute=3"}}};
    Client client{host};
};

TEST_F(Guessing, IsSlowedDown) {
    client.credentials.password = "guess";
    for (unsigned guess = 0; guess <= Limit; ++guess) EXPECT_THAT(client.AskWithCredentials(), IsPlainRefusal());
    EXPECT_EQ(client.AskWithCredentials().status, 429U);
    EXPECT_EQ(client.Ask("").status, 401U);
    EXPECT_EQ(client.Ask("", "GetSystemDateAndTime").status, 200U);
}

TEST_F(Guessing, IsNotHiddenByTheRealm) {
    client.credentials.password = "guess";
    client.credentials.realm = "stale=true";
    for (unsigned guess = 0; guess <= Limit; ++guess) EXPECT_THAT(client.AskWithCredentials(), IsPlainRefusal());
    EXPECT_EQ(client.AskWithCredentials().status, 429U);
}

TEST_F(Guessing, ExcludesReplayedDigestsAndUnknownNonces) {
    for (unsigned request = 0; request < 10; ++request) {
        EXPECT_NE(client.AskWithCredentials().status, 429U);
        auto old = client.credentials;
        old.nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093";
        EXPECT_THAT(client.Ask(old.Write()), SaysStale());
    }
}

TEST_F(Guessing, ExcludesRequestsWithoutCredentials) {
    for (unsigned request = 0; request < 20; ++request) EXPECT_EQ(client.Ask("").status, 401U);
    EXPECT_EQ(client.AskWithCredentials().status, 200U);
}

TEST_F(Guessing, ExcludesUnsupportedAlgorithms) {
    auto other = client.credentials;
    for (auto const* algorithm : {"SHA-256", "MD5-sess"}) {
        other.algorithm = algorithm;
        for (unsigned request = 0; request < 5; ++request) EXPECT_THAT(client.Ask(other.Write()), IsPlainRefusal());
    }
    EXPECT_EQ(client.AskWithCredentials().status, 200U);
}

TEST(Authentication, DoesNotRevealWhichUsersExist) {
    HostProcess const host;
    Client client(host);
    auto const guess = [&](std::string const& user) {
        auto credentials = client.credentials;
        credentials.user = user;
        credentials.password = "guess";
        auto response = client.Ask(credentials.Write());
        EXPECT_THAT(response, IsPlainRefusal());
        // Fields that differ in every response.
        response.fields.erase("date");
        auto& challenge = response.fields.at("www-authenticate");
        challenge.erase(challenge.find("nonce=\"") + 7, 64);
        return std::pair(response.fields, response.body);
    };
    EXPECT_EQ(guess("admin"), guess("root"));
}

} // namespace
} // namespace zarn::test
