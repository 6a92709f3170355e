#include "support/host_process.h"
#include "support/raw_connection.h"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;

class Http : public testing::Test {
protected:
    RawResponse Ask(std::string const& requestLine, std::string const& fields = {}) const {
        return RawConnection(host.GetPort())
            .Exchange(requestLine + " HTTP/1.1\r\nHost: localhost\r\n" + fields + "\r\n");
    }

    /// curl's output for a request with the password.
    std::string Curl(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(),
                         {"curl", "-s", "-S", "-w", "\n%{http_code}", "--digest", "-u", "admin:" + host.GetPassword()});
        Process curl(std::move(arguments));
        EXPECT_EQ(curl.Wait(), 0) << curl.GetLog();
        return curl.GetOutput();
    }

    HostProcess host;
};

TEST_F(Http, HandsSoapToTheModuleAndKeepsTheConnection) {
    RawConnection connection(host.GetPort());
    for (int i = 0; i < 3; ++i) {
        auto const response = connection.Exchange(MakeSoapRequest("GetSystemDateAndTime"));
        EXPECT_EQ(response.status, 200U);
        EXPECT_THAT(response.fields.at("content-type"), HasSubstr("application/soap+xml"));
        EXPECT_EQ(response.fields.at("server"), "zarn-host");
        EXPECT_FALSE(response.fields.contains("connection"));
        EXPECT_THAT(response.body, HasSubstr("GetSystemDateAndTimeResponse"));
    }
}

TEST_F(Http, ServesEveryPathBelowOnvif) {
    auto request = MakeSoapRequest("GetSystemDateAndTime");
    request.replace(request.find("/onvif/device_service"), 21, "http://localhost/onvif/events_service/1/x?y=z");
    EXPECT_EQ(RawConnection(host.GetPort()).Exchange(request).status, 200U);
}

TEST_F(Http, SendsOneFinalResponseAfter100Continue) {
    RawConnection connection(host.GetPort());
    auto const request = MakeSoapRequest("GetSystemDateAndTime", "Expect: 100-continue\r\n");
    auto const end = request.find("\r\n\r\n") + 4;
    connection.Send(request.substr(0, end));
    EXPECT_EQ(connection.ReadBytes(25), "HTTP/1.1 100 Continue\r\n\r\n");
    EXPECT_EQ(connection.Exchange(request.substr(end)).status, 200U);
    EXPECT_EQ(connection.Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
}

TEST_F(Http, ChallengesAndAcceptsCredentials) {
    auto const body = MakeSoapRequest("GetDeviceInformation");
    auto const challenge = RawConnection(host.GetPort()).Exchange(body);
    EXPECT_EQ(challenge.status, 401U);
    EXPECT_THAT(challenge.fields.at("www-authenticate"), HasSubstr("realm=\"zarnsuite.example\""));
    EXPECT_THAT(Curl({"-H", "Content-Type: application/soap+xml", "--data-binary",
                      body.substr(body.find("\r\n\r\n") + 4), host.GetUrl() + "/onvif/device_service"}),
                AllOf(HasSubstr("<tds:Manufacturer>Zarnsuite<"), HasSubstr("\n200")));
}

TEST_F(Http, AsksForNoCredentialsWhenAuthenticationIsOff) {
    HostProcess const open({.arguments = {"--set", "settings.authentication.enabled=false"}});
    RawConnection connection(open.GetPort());
    EXPECT_EQ(connection.Exchange(MakeSoapRequest("GetDeviceInformation")).status, 200U);
    EXPECT_EQ(connection.Exchange("GET /snapshot/1/latest.jpeg HTTP/1.1\r\nHost: h\r\n\r\n").status, 503U);
}

TEST_F(Http, ThrottlesPasswordGuessing) {
    HostProcess const slow({.arguments = {"--set", "settings.limits.failed_logins_per_minute=3"}});
    RawConnection connection(slow.GetPort());
    std::string const guess = "Authorization: Digest username=\"admin\", realm=\"zarnsuite.example\", nonce=\"a\", "
                              "uri=\"/onvif/device_service\", "
                              "response=\"00000000000000000000000000000000\"\r\n";
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(connection.Exchange(MakeSoapRequest("GetDeviceInformation", guess)).status, 401U);
    auto const refusal = connection.Exchange(MakeSoapRequest("GetDeviceInformation", guess));
    EXPECT_EQ(refusal.status, 429U);
    EXPECT_THAT(refusal.fields.at("retry-after"), MatchesRegex("[0-9]+"));
    EXPECT_EQ(connection.Exchange("GET /snapshot/1/latest.jpeg HTTP/1.1\r\nHost: h\r\n" + guess + "\r\n").status, 429U);
    EXPECT_EQ(connection.Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
    EXPECT_TRUE(slow.GetProcess().WaitForLog("too many wrong passwords"));
}

TEST_F(Http, AnswersUnknownPathsWith404AndWrongMethodsWith405) {
    EXPECT_EQ(Ask("GET /").status, 404U);
    EXPECT_EQ(Ask("GET /onvif").status, 404U);
    EXPECT_EQ(Ask("GET /snapshot/1/other.jpeg").status, 404U);
    EXPECT_EQ(Ask("GET /api/other").status, 404U);
    auto const refusal = Ask("GET /onvif/device_service");
    EXPECT_EQ(refusal.status, 405U);
    EXPECT_THAT(refusal.fields.at("allow"), HasSubstr("POST"));
    EXPECT_THAT(Ask("DELETE /snapshot/1/latest.jpeg").fields.at("allow"), HasSubstr("GET, HEAD"));
    EXPECT_THAT(Ask("DELETE /api/health").fields.at("allow"), HasSubstr("GET, HEAD"));
}

TEST_F(Http, ServesHealthWithoutCredentials) {
    auto const response = Ask("GET /api/health");
    EXPECT_EQ(response.status, 200U);
    EXPECT_EQ(response.fields.at("content-type"), "application/json");
    auto const status = boost::json::parse(response.body);
    EXPECT_EQ(status.at("status"), "ok");
    EXPECT_EQ(status.at("listeners").at("web").at("port"), host.GetPort());
    EXPECT_EQ(status.at("listeners").at("web").at("tls"), false);
    EXPECT_EQ(status.at("channels").at(0).at("id"), "1");
    EXPECT_EQ(status.at("channels").at(1).at("codec"), "video/x-h265");
}

TEST_F(Http, EnforcesItsBounds) {
    EXPECT_EQ(Ask("POST /onvif/device_service", "Content-Length: 1048577\r\n").status, 413U);
    EXPECT_EQ(Ask("POST /onvif/device_service").status, 411U);
    EXPECT_EQ(Ask("GET /" + std::string(1000, 'x')).status, 414U);
    EXPECT_EQ(Ask("GET /", "A: " + std::string(8188, 'x') + "\r\n").status, 431U);
    EXPECT_EQ(RawConnection(host.GetPort()).Exchange("nonsense\r\n\r\n").status, 400U);
}

TEST_F(Http, PassesRequestsOfMaximumLengthToTheModule) {
    auto request = MakeSoapRequest("GetSystemDateAndTime", "A: " + std::string(8187, 'x') + "\r\n");
    request.replace(request.find("/onvif/device_service"), 21, "/onvif/" + std::string(984, 'x'));
    EXPECT_EQ(RawConnection(host.GetPort()).Exchange(request).status, 200U);
}

TEST_F(Http, AppliesTheConfiguredLimits) {
    HostProcess const small(
        {.arguments = {"--set", "settings.limits.header_seconds=1", "--set", "settings.limits.body_bytes=1024"}});
    RawConnection slow(small.GetPort());
    EXPECT_EQ(slow.Exchange("GET /").status, 408U);
    RawConnection big(small.GetPort());
    EXPECT_EQ(big.Exchange("POST /onvif/a HTTP/1.1\r\nHost: h\r\nContent-Length: 1025\r\n\r\n").status, 413U);
}

} // namespace
} // namespace zarn::test
