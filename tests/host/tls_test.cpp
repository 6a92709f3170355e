#include "support/certificate.h"
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/raw_connection.h"
#include "support/server_connections.h"

#include <gmock/gmock.h>

#include <csignal>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

class TlsHost : public testing::Test {
protected:
    /// curl's output for a request that trusts only `certificate`; empty when the connection fails.
    std::string Curl(std::vector<std::string> const& arguments, std::string const& certificate) const {
        std::vector<std::string> all{"curl", "-s", "--cacert", certificate};
        all.insert(all.end(), arguments.begin(), arguments.end());
        Process curl(all);
        if (curl.Wait() != 0) return "";
        return curl.GetOutput();
    }

    /// The capabilities that the device service reports at this address.
    std::string GetCapabilities(std::string const& url) const {
        auto const body = R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body>)"
                          R"(<GetCapabilities xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>)";
        return Curl({"--data-binary", body, "-H", "Content-Type: application/soap+xml", url + "/onvif/device_service"},
                    files.certificate);
    }

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    Certificate files{*folder};
    HostProcess host{{.arguments = {"--set", "settings.tls.certificate=" + files.certificate, "--set",
                                    "settings.tls.private_key=" + files.key},
                      .folder = folder}};
};

TEST_F(TlsHost, AnnouncesAndServesHttps) {
    EXPECT_THAT(host.GetProcess().GetOutput(), MatchesRegex("ready https://[0-9.]+:[0-9]+/onvif/device_service\n"));
    EXPECT_THAT(Curl({host.GetUrl() + "/api/health"}, files.certificate), HasSubstr("\"tls\":true"));
}

TEST_F(TlsHost, ReportsHttpsXAddrs) { EXPECT_THAT(GetCapabilities(host.GetUrl()), HasSubstr("XAddr>https://")); }

TEST_F(TlsHost, SpeaksNoPlainHttp) {
    auto const plain = "http://127.0.0.1:" + std::to_string(host.GetPort()) + "/api/health";
    EXPECT_EQ(Curl({plain}, files.certificate), "");
}

TEST_F(TlsHost, SpeaksNoTlsOlderThanOneTwo) {
    EXPECT_EQ(Curl({"--tls-max", "1.1", host.GetUrl() + "/api/health"}, files.certificate), "");
    EXPECT_NE(Curl({"--tls-max", "1.2", host.GetUrl() + "/api/health"}, files.certificate), "");
}

TEST_F(TlsHost, LoadsARenewedCertificateOnSighup) {
    auto const old = folder->Write("old.pem", folder->Read("server.pem"));
    Certificate const renewed(*folder);
    host.GetProcess().Signal(SIGHUP);
    ASSERT_TRUE(host.GetProcess().WaitForLog("again"));
    std::string answer;
    Eventually([&] { return !(answer = Curl({host.GetUrl() + "/api/health"}, renewed.certificate)).empty(); });
    EXPECT_THAT(answer, HasSubstr("\"tls\":true"));
    EXPECT_EQ(Curl({host.GetUrl() + "/api/health"}, old), "");
}

TEST_F(TlsHost, KeepsItsCertificateWhenTheNewOneCannotBeUsed) {
    auto const old = folder->Write("old.pem", folder->Read("server.pem"));
    folder->Write("server.key", "garbage");
    host.GetProcess().Signal(SIGHUP);
    ASSERT_TRUE(host.GetProcess().WaitForLog("Keeping the previous certificate: settings.tls.private_key: "));
    EXPECT_THAT(Curl({host.GetUrl() + "/api/health"}, old), HasSubstr("\"tls\":true"));
}

TEST_F(TlsHost, TurnsTlsOnAndOffOnSighup) {
    HostProcess plain;
    auto const configure = [&](std::string const& tls) {
        plain.GetFolder().Write("config.json", R"({"settings": {"web_port": 0, "rtsp_port": 0, "tls": )" + tls + "}}");
        plain.GetProcess().Signal(SIGHUP);
    };
    auto const server = "://127.0.0.1:" + std::to_string(plain.GetPort());
    auto const address = server + "/api/health";
    auto const refersTo = [&](std::string const& scheme) {
        EXPECT_THAT(GetCapabilities(scheme + server), HasSubstr("XAddr>" + scheme + "://"));
    };
    refersTo("http");
    auto const answers = [&](std::string const& scheme, std::string const& part) {
        return Eventually([&] { return Curl({scheme + address}, files.certificate).find(part) != std::string::npos; });
    };
    configure(R"({"certificate": ")" + files.certificate + R"(", "private_key": ")" + files.key + "\"}");
    EXPECT_TRUE(answers("https", "\"tls\":true")) << plain.GetProcess().GetLog();
    EXPECT_EQ(Curl({"http" + address}, files.certificate), "");
    refersTo("https");
    configure("{}");
    EXPECT_TRUE(answers("http", "\"tls\":false"));
    refersTo("http");
}

TEST_F(TlsHost, UsesAnExpiredCertificateWithAWarning) {
    EXPECT_THAT(host.GetProcess().GetLog(), Not(HasSubstr("has expired")));
    files.Expire();
    host.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(host.GetProcess().WaitForLog("settings.tls.certificate: " + files.certificate +
                                             " has expired: clients that check certificates"));
    HostProcess const second({.arguments = {"--set", "settings.tls.certificate=" + files.certificate, "--set",
                                            "settings.tls.private_key=" + files.key}});
    EXPECT_TRUE(second.GetProcess().WaitForLog("has expired"));
    Process careless({"curl", "-s", "-k", second.GetUrl() + "/api/health"});
    EXPECT_EQ(careless.Wait(), 0);
    EXPECT_THAT(careless.GetOutput(), HasSubstr("\"tls\":true"));
    EXPECT_EQ(Curl({second.GetUrl() + "/api/health"}, files.certificate), "") << "accepted an expired certificate";
}

TEST_F(TlsHost, StopsWhileClientsAreConnected) {
    HostProcess patient(
        {.arguments = {"--set", "settings.tls.certificate=" + files.certificate, "--set",
                       "settings.tls.private_key=" + files.key, "--set", "settings.limits.header_seconds=3600", "--set",
                       "settings.limits.idle_seconds=3600"}});
    RawConnection const silent(patient.GetPort());
    RawConnection greeting(patient.GetPort());
    greeting.Send({"\x16\x03\x01\x01\x00\x01\x00", 7}); // start of a handshake
    EXPECT_TRUE(Eventually([&] { return ListServerConnections(patient.GetPort()).size() == 2; }));
    patient.ExpectStop();
}

} // namespace
} // namespace zarn::test
