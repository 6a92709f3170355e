#include "host/host_process.h"
#include "host/raw_connection.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <exception>
#include <memory>
#include <thread>
#include <vector>

namespace zarn::tests::host {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class Stop : public testing::Test {
protected:
    HostProcess host{{.arguments = {"--set", "settings.authentication.enabled=false"}}};
};

TEST_F(Stop, EndsWithStatusZeroAtEitherSignal) {
    EXPECT_EQ(host.Stop(2s), 0);
    HostProcess interrupted;
    interrupted.GetProcess().Signal(SIGINT);
    EXPECT_EQ(interrupted.GetProcess().Wait(2s), 0);
}

TEST_F(Stop, DoesNotWaitForClientsThatDoNotSendOrReadOrClose) {
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (auto const* bytes : {"", "POST /onv", "POST /onvif/a HTTP/1.1\r\nHost: h\r\nContent-Length: 9\r\n\r\n<"}) {
        for (int i = 0; i < 20; ++i) {
            clients.push_back(std::make_unique<RawConnection>(host.GetPort()));
            clients.back()->Send(bytes);
        }
    }
    ASSERT_EQ(RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
    EXPECT_EQ(host.Stop(2s), 0);
}

TEST_F(Stop, EndsInTimeUnderLoad) {
    std::vector<std::thread> clients;
    std::atomic<bool> stop = false;
    std::atomic<int> served = 0;
    for (int i = 0; i < 8; ++i) {
        clients.emplace_back([&] {
            while (!stop) {
                try {
                    RawConnection connection(host.GetPort(), 2s);
                    while (connection.Exchange(MakeSoapRequest("GetSystemDateAndTime")).status == 200) ++served;
                } catch (std::exception const&) {
                    std::this_thread::yield(); // the host has gone
                }
            }
        });
    }
    auto const deadline = Clock::now() + 10s;
    while (served < 200 && Clock::now() < deadline) std::this_thread::sleep_for(1ms);
    EXPECT_EQ(host.Stop(2s), 0);
    stop = true;
    for (auto& client : clients) client.join();
    EXPECT_GE(served, 200);
}

} // namespace
} // namespace zarn::tests::host
