#include "faults/fault.h"
#include "faults/fault_control.h"
#include "support/host_process.h"
#include "support/pull_point_client.h"
#include "support/raw_connection.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;

/// Limits the test to half a minute: with more calls than this, only some of them fail, at even intervals.
constexpr int MostRounds = 400;

constexpr char const* ServingConfiguration = R"({
  "settings": {"web_port": 0, "rtsp_port": 0, "authentication": {"enabled": false},
               "limits": {"connections_per_address": 1024}},
  "channels": {"1": {"name": "Gate", "video": {"codec": "video/x-h264", "width": 64, "height": 48, "rate": "5/1"}}}
})";

std::string MakePost(std::string const& path, std::string const& type, std::string const& body) {
    return "POST " + path + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string MakeSoap(std::string const& path, std::string const& operation) {
    return MakePost(path, "application/soap+xml",
                    R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body>)" + operation +
                        "</s:Body></s:Envelope>");
}

/// One request of each kind.
std::vector<std::string> MakeRequests() {
    return {
        MakeSoapRequest("GetSystemDateAndTime"),
        MakeSoapRequest("GetServices"),
        MakeSoapRequest("GetNetworkInterfaces"),
        MakeSoap("/onvif/media_service", R"(<GetProfiles xmlns="http://www.onvif.org/ver10/media/wsdl"/>)"),
        MakeSoap("/onvif/media2_service", R"(<GetProfiles xmlns="http://www.onvif.org/ver20/media/wsdl"/>)"),
        MakeSoap("/onvif/events_service",
                 R"(<CreatePullPointSubscription xmlns="http://www.onvif.org/ver10/events/wsdl">)"
                 "<InitialTerminationTime>PT1S</InitialTerminationTime></CreatePullPointSubscription>"),
        MakePost("/api/events", "application/json", MakeEvent("gate")),
        "GET /api/health HTTP/1.1\r\nHost: localhost\r\n\r\n",
        "GET /snapshot/1/latest.jpeg HTTP/1.1\r\nHost: localhost\r\n\r\n",
    };
}

/// A host in which calls fail while it serves requests.
class FailureWhileServing : public testing::TestWithParam<Fault> {
protected:
    FailureWhileServing()
        : host({.configuration = ServingConfiguration, .environment = control.GetEnvironment(), .folder = folder}) {}

    /// Expects an answer or a closed connection for every request.
    void AskEverything() const {
        for (auto const& request : requests) {
            try {
                RawConnection connection(host.GetPort());
                connection.Exchange(request);
            } catch (std::runtime_error const& error) {
                EXPECT_STRNE(error.what(), "nothing came in time") << request;
            }
        }
    }

    /// Expects that the failure has occurred and that the host serves normally again.
    void ExpectThatItServes() const {
        for (auto const& request : requests) {
            auto const status = RawConnection(host.GetPort()).Exchange(request).status;
            EXPECT_TRUE(status == 200 || status == 202 || status == 503) << status << " for " << request;
        }
        EXPECT_EQ(RawConnection(host.GetPort()).Exchange(requests.front()).status, 200U);
    }

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    FaultControl control{*folder};
    HostProcess host;
    std::vector<std::string> const requests = MakeRequests();
};

TEST_P(FailureWhileServing, AffectsNoOtherRequest) {
    AskEverything(); // finish one-time initialisation
    control.Arm(GetParam().call, Never, GetParam().error);
    AskEverything();
    int const calls = control.CountCalls();
    control.Disarm();
    ASSERT_GT(calls, 0) << "the host never makes this call";
    int const stride = std::max(1, calls / MostRounds);
    for (int n = 1; n <= calls && !HasFailure(); n += stride) {
        SCOPED_TRACE("call " + std::to_string(n) + " of " + std::to_string(calls));
        control.Arm(GetParam().call, n, GetParam().error);
        AskEverything();
        control.Disarm();
        ASSERT_FALSE(host.GetProcess().Wait(0ms)) << host.GetProcess().GetLog();
        if (n % 16 == 1) ExpectThatItServes();
    }
    ExpectThatItServes();
}

INSTANTIATE_TEST_SUITE_P(Faults, FailureWhileServing,
                         testing::Values(Fault{Call::New, ENOMEM}, Fault{Call::Malloc, ENOMEM},
                                         Fault{Call::Accept, EMFILE}, Fault{Call::Receive, ECONNRESET},
                                         Fault{Call::Send, EPIPE}, Fault{Call::SetSocketOption, ENOBUFS},
                                         Fault{Call::Socket, EMFILE}, Fault{Call::Close, EIO}),
                         [](auto const& row) { return NameOf(row.param); });

} // namespace
} // namespace zarn::test
