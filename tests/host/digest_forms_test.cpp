#include "support/digest_client.h"
#include "support/host_process.h"
#include "support/raw_connection.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

namespace zarn::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Key;
using testing::Not;
using testing::Pair;

/// A form of digest answer, and whether the ONVIF module and the host's own paths accept it.
struct Form {
    std::string name;
    std::function<std::string(DigestCredentials)> write;
    bool module;
    bool own;
    std::string query = {};  ///< appended to the path of the request line
    std::string prefix = {}; ///< prepended to the path
};

void PrintTo(Form const& form, std::ostream* stream) { *stream << form.name; }

/// Applies a change, then writes the credentials in the usual form.
auto Change(std::function<void(DigestCredentials&)> change) {
    return [change = std::move(change)](DigestCredentials credentials) {
        change(credentials);
        return credentials.Write();
    };
}

/// Writes valid credentials, then replaces part of the text.
auto Replace(std::string from, std::string to) {
    return [from = std::move(from), to = std::move(to)](DigestCredentials const& credentials) {
        return boost::replace_all_copy(credentials.Write(), from, to);
    };
}

auto Say(std::string text) {
    return [text = std::move(text)](DigestCredentials const&) { return text; };
}

std::string InUpperCase(DigestCredentials const& credentials) {
    auto const response = credentials.MakeResponse();
    return boost::replace_first_copy(credentials.Write(), response, boost::to_upper_copy(response));
}

std::string WithNamesInUpperCase(DigestCredentials const& credentials) {
    auto text = credentials.Write();
    for (auto const* name : {"username", "realm", "nonce", "uri", "algorithm", "qop", "nc", "response"})
        boost::replace_first(text, std::string(name) + "=", boost::to_upper_copy(std::string(name)) + "=");
    return text;
}

std::string WithoutResponse(DigestCredentials const& credentials) {
    auto const text = credentials.Write();
    return text.substr(0, text.rfind(", response="));
}

Form const Forms[] = {
    {"QopAuth", Change([](auto&) {}), true, true},
    {"WithoutQop", Change([](auto& c) { c.qop = ""; }), true, true},
    {"WithoutCount", Change([](auto& c) { c.count = ""; }), true, true},
    {"WithoutCountAndClientNonce", Change([](auto& c) { c.count = c.cnonce = ""; }), true, true},
    {"WithoutAlgorithm", Change([](auto& c) { c.algorithm = ""; }), true, true},
    {"QuotedQop", Replace("qop=auth", "qop=\"auth\""), true, true},
    {"QuotedCount", Replace("nc=00000001", "nc=\"00000001\""), true, true},
    {"QuotedAlgorithm", Replace("=MD5", "=\"MD5\""), true, true},
    {"LowerCaseAlgorithm", Change([](auto& c) { c.algorithm = "md5"; }), true, true},
    {"WithoutAnyQuotes", Replace("\"", ""), true, true},
    {"WithoutBlanks", Replace(", ", ","), true, true},
    {"WithManyBlanks", Replace(", ", " ,\t  "), true, true},
    {"WithBlanksBesideEqualSigns", Replace("nc=", "nc = "), true, true},
    {"UpperCaseResponse", InUpperCase, true, true},
    {"UpperCaseNames", WithNamesInUpperCase, true, true},
    {"LowerCaseScheme", Replace("Digest ", "digest "), true, true},
    {"UpperCaseCount", Change([](auto& c) { c.count = "000000AF"; }), true, true},
    {"ShortCount", Change([](auto& c) { c.count = "1"; }), true, true},
    {"ClientNonceInBase64", Change([](auto& c) { c.cnonce = "OTk4NDY3Yzk0NjIyMTE5Mw+/=="; }), true, true},
    {"WithOpaque", Replace(", qop", ", opaque=\"5ccc069c\", qop"), true, true},
    {"OtherNameForTheAccount", Replace("\"admin\"", "\"operator\""), true, true},
    {"OtherUser", Change([](auto& c) { c.user = "operator"; }), false, false},
    {"OtherPassword", Change([](auto& c) { c.password = "guess"; }), false, false},
    {"OtherRealm", Change([](auto& c) { c.realm = "elsewhere"; }), false, false},
    {"OtherUri", Change([](auto& c) { c.uri = "/onvif/other"; }), false, false},
    {"OtherMethod", Change([](auto& c) { c.method = "GET"; }), false, false},
    {"QueryInBoth", Change([](auto& c) { c.uri += "?a=b"; }), true, true, "?a=b"},
    {"QueryLeftOut", Change([](auto&) {}), true, true, "?a=b"},
    {"OtherQuery", Change([](auto& c) { c.uri += "?a=c"; }), false, false, "?a=b"},
    {"AbsoluteRequestTarget", Change([](auto&) {}), true, true, "", "http://localhost"},
    // The module compares with the path that it receives and ignores the uri parameter of the answer.
    {"AbsoluteUri", Change([](auto& c) { c.uri = "http://localhost" + c.uri; }), false, true, "", "http://localhost"},
    {"UriOfAnotherPathInAnAnswerForThisOne", Replace("uri=\"/", "uri=\"/other/"), true, false},
    {"Md5Sess", Change([](auto& c) { c.algorithm = "MD5-sess"; }), false, false},
    {"Sha256", Change([](auto& c) { c.algorithm = "SHA-256"; }), false, false},
    {"Sha256Sess", Change([](auto& c) { c.algorithm = "SHA-256-sess"; }), false, false},
    {"UnknownAlgorithm", Replace("=MD5", "=ROT13"), false, false},
    {"OverTheBody", Change([](auto& c) { c.qop = "auth-int"; }), false, false},
    {"UnknownQop", Change([](auto& c) { c.qop = "other"; }), false, false},
    {"WithoutUser", Change([](auto& c) { c.user = ""; }), false, false},
    {"WithoutRealm", Replace("realm=\"zarnsuite.example\"", "realm=\"\""), false, false},
    {"WithoutResponse", WithoutResponse, false, false},
    {"ShortResponse", Replace("response=\"", "response=\"\", x=\""), false, false},
    {"SchemeAlone", Say("Digest"), false, false},
    {"Basic", Say("Basic YWRtaW46YSB0ZXN0J3MgcGFzc3dvcmQ="), false, false},
    {"Bearer", Say("Bearer 0123"), false, false},
    {"Nonsense", Say("Digest \"=,=\", ===, \\"), false, false},
};

class DigestForms : public testing::TestWithParam<Form> {
protected:
    static void SetUpTestSuite() {
        host = std::make_unique<HostProcess>(
            HostProcess::Options{.arguments = {"--set", "settings.limits.failed_logins_per_minute=10000"}});
    }

    static void TearDownTestSuite() { host.reset(); }

    /// On one connection, sends a request without credentials, one with them, and a final one to check that the
    /// connection is still usable.
    static RawResponse Ask(std::string const& path, std::string const& body) {
        RawConnection connection(host->GetPort());
        auto const send = [&](std::string const& target, std::string const& fields) {
            return connection.Exchange("POST " + target + " HTTP/1.1\r\nHost: localhost\r\n" + fields +
                                       "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        };
        auto const challenge = ReadChallenge(send(path, {}));
        auto const& form = GetParam();
        auto const text =
            form.write({.password = host->GetPassword(), .nonce = challenge.at("nonce"), .uri = path, .body = body});
        auto response = send(form.prefix + path + form.query, "Authorization: " + text + "\r\n");
        EXPECT_EQ(send(path, {}).status, 401U);
        return response;
    }

    static void ExpectChallenge(RawResponse const& response) {
        EXPECT_EQ(response.status, 401U);
        EXPECT_THAT(ReadChallenge(response),
                    AllOf(Contains(Key("realm")), Contains(Key("nonce")), Contains(Pair("qop", "auth")),
                          Contains(Pair("algorithm", "MD5")), Not(Contains(Key("stale")))));
    }

    static std::unique_ptr<HostProcess> host;
};

std::unique_ptr<HostProcess> DigestForms::host;

TEST_P(DigestForms, AreAcceptedOrChallengedByTheModule) {
    auto const request = MakeSoapRequest("GetDeviceInformation");
    auto const response = Ask("/onvif/device_service", request.substr(request.find("\r\n\r\n") + 4));
    if (GetParam().module) {
        EXPECT_EQ(response.status, 200U);
    } else {
        ExpectChallenge(response);
    }
}

TEST_P(DigestForms, AreAcceptedOrChallengedByTheHostItself) {
    auto const response = Ask("/api/events", R"({"type": "presence"})");
    if (GetParam().own) {
        EXPECT_EQ(response.status, 202U);
    } else {
        ExpectChallenge(response);
    }
}

INSTANTIATE_TEST_SUITE_P(All, DigestForms, testing::ValuesIn(Forms), [](auto const& form) { return form.param.name; });

} // namespace
} // namespace zarn::test
