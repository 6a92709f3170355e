#include "support/broker.h"
#include "support/digest_client.h"
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/raw_connection.h"

#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Logs in to a host in every way, with valid and invalid credentials, and searches the host's output for secrets.
class Secrets : public testing::Test {
protected:
    static constexpr char BrokersPassword[] = "the broker's secret";
    static constexpr char CamerasPassword[] = "the camera's secret";

    /// A configuration whose sources and brokers have passwords, which are wrong.
    static std::string Configure(Broker const& broker) {
        return R"({"settings": {"web_port": 0, "rtsp_port": 0, "onvif": {"enabled": false}, "events": {"mqtt": {
                   "enabled": true, "url": ")" +
               broker.GetUrl() + R"(", "user": "events", "password": ")" + BrokersPassword +
               R"("}}}, "channels": {"1": {"source": "rtsp://127.0.0.1:1/stream", "user": "viewer", "password": ")" +
               CamerasPassword + R"("}, "2": {"source": "test:ball?width=320&height=240&rate=10"}}})";
    }

    void LogInOverHttp(HostProcess const& host, std::string const& path, std::string const& body) {
        RawConnection connection(host.GetPort());
        auto const send = [&](std::string const& fields) {
            return connection.Exchange("POST " + path + " HTTP/1.1\r\nHost: h\r\n" + fields +
                                       "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        };
        DigestCredentials credentials{.password = password, .nonce = ReadChallenge(send("")).at("nonce"), .uri = path};
        auto const answer = [&] {
            secrets.push_back(credentials.MakeResponse());
            return send("Authorization: " + credentials.Write() + "\r\n").status;
        };
        EXPECT_LT(answer(), 300U);
        EXPECT_EQ(answer(), 401U); // replayed
        credentials.nonce = "0123";
        EXPECT_EQ(answer(), 401U);
        credentials.password = wrongPassword;
        EXPECT_EQ(answer(), 401U);
        credentials.algorithm = "SHA-256";
        EXPECT_EQ(answer(), 401U);
        EXPECT_EQ(send("Authorization: Basic " + std::string(basic) + "\r\n").status, 401U);
    }

    void LogInOverRtsp(HostProcess const& host) {
        RawConnection connection(host.GetRtspPort());
        auto const uri = "rtsp://127.0.0.1:" + std::to_string(host.GetRtspPort()) + "/channels/2";
        auto const send = [&](std::string const& fields) {
            connection.Send("DESCRIBE " + uri + " RTSP/1.0\r\nCSeq: 1\r\n" + fields + "\r\n");
            std::string header;
            while (!header.ends_with("\r\n\r\n")) {
                auto const next = connection.ReadBytes(1);
                if (next.empty()) break;
                header += next;
            }
            return header;
        };
        std::string challenge;
        auto const isChallenged = [&] {
            challenge = send("");
            return challenge.find("nonce=") != std::string::npos;
        };
        ASSERT_TRUE(Eventually(isChallenged)); // the stream needs video first
        auto const begin = challenge.find("nonce=\"") + 7;
        DigestCredentials credentials{.password = password,
                                      .nonce = challenge.substr(begin, challenge.find('"', begin) - begin),
                                      .method = "DESCRIBE",
                                      .uri = uri,
                                      .algorithm = "",
                                      .qop = ""};
        auto const answer = [&] {
            secrets.push_back(credentials.MakeResponse());
            return send("Authorization: " + credentials.Write() + "\r\n");
        };
        EXPECT_THAT(answer(), Not(HasSubstr(" 401 ")));
        credentials.password = wrongPassword;
        EXPECT_THAT(answer(), HasSubstr(" 401 "));
    }

    /// Everything that the host has written, except the files that store secrets.
    static std::vector<std::string> GetTexts(HostProcess const& host) {
        std::vector<std::string> texts{host.GetProcess().GetLog()};
        for (auto const& entry : std::filesystem::recursive_directory_iterator(host.GetFolder().GetPath())) {
            if (!entry.is_regular_file() || Places.contains(entry.path().filename())) continue;
            std::ifstream file(entry.path(), std::ios::binary);
            texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        }
        return texts;
    }

    /// Exercises every use of a password and expects that none appears in the log or in other files.
    void ExpectNoneAnywhere(HostProcess::Options options, bool generated = false) {
        Broker const broker("allow_anonymous false\n");
        options.configuration = Configure(broker);
        options.arguments.insert(options.arguments.end(), {"--log-level", "trace"});
        HostProcess host(options);
        if (generated) password = ReadGenerated(host.GetProcess().GetOutput());
        auto const request = MakeSoapRequest("GetDeviceInformation");
        LogInOverHttp(host, "/onvif/device_service", request.substr(request.find("\r\n\r\n") + 4));
        LogInOverHttp(host, "/api/events", R"({"type": "presence"})");
        LogInOverRtsp(host);
        EXPECT_TRUE(host.GetProcess().WaitForLog("not authori")); // by the broker
        auto const health = boost::json::serialize(host.GetHealth());
        host.GetProcess().Signal(SIGHUP);
        EXPECT_TRUE(host.GetProcess().WaitForLog("config.json again"));
        auto const stored = host.GetFolder().Read("config.json.credentials");
        secrets.push_back(stored.substr(stored.rfind(':') + 1, 32));
        EXPECT_EQ(secrets.back(), Hash("MD5", "admin:zarnsuite.example:" + password));
        EXPECT_EQ(host.Stop(), 0);

        auto texts = GetTexts(host);
        texts.push_back(health);
        if (!generated) texts.push_back(host.GetProcess().GetOutput());
        secrets.insert(secrets.end(), {password, wrongPassword, basic, BrokersPassword, CamerasPassword});
        for (auto const& text : texts) {
            for (auto const& secret : secrets) EXPECT_THAT(text, Not(HasSubstr(secret)));
        }
    }

    static inline std::set<std::string> const Places{"config.json", "config.json.good", "config.json.credentials"};

    static std::string ReadGenerated(std::string const& output) {
        auto const line = output.substr(0, output.find('\n'));
        return line.substr(line.rfind(' ') + 1);
    }

    std::string password = "a test's password";
    std::string const wrongPassword = "a wrong password";
    std::string const basic = "YWRtaW46YSB0ZXN0J3MgcGFzc3dvcmQ="; ///< "admin:a test's password" in Base64
    std::vector<std::string> secrets;
};

TEST_F(Secrets, DoNotLeakWhenThePasswordIsInTheEnvironment) { ExpectNoneAnywhere({}); }

TEST_F(Secrets, DoNotLeakWhenThePasswordIsAnArgument) {
    ExpectNoneAnywhere({.arguments = {"--password", password}, .password = ""});
}

TEST_F(Secrets, DoNotLeakWhenThePasswordIsGenerated) { ExpectNoneAnywhere({.password = ""}, true); }

} // namespace
} // namespace zarn::test
