#include "host/video/rtsp/udp_outlet.h"
#include "host/video/rtsp/udp_ports.h"
#include "unit/host/video/rtsp/served_stream.h"

#include <boost/asio/buffer.hpp>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {
namespace {

using namespace std::chrono_literals;
using boost::asio::ip::udp;

constexpr std::string_view Report("\x80\xC9\x00\x01\x00\x00\x00\x01", 8);

/// A session over UDP.
class RtspUdp : public ServedStreamTest {
protected:
    RtspUdp() {
        session->SetUp(0, Local(), {.rtpPort = rtp.local_endpoint().port(), .rtcpPort = rtcp.local_endpoint().port()});
    }

    static boost::asio::ip::address Local() { return boost::asio::ip::address_v4::loopback(); }

    /// Sends a datagram to the RTCP port and has it handled.
    void Send(udp::socket& from, std::string_view bytes) {
        auto const port = static_cast<std::uint16_t>(worker.GetUdpPorts().GetPort() + 1);
        from.send_to(boost::asio::buffer(bytes.data(), bytes.size()), {Local(), port});
        worker.GetContext().run_one_for(30s);
    }

    std::shared_ptr<Session> session = MakeSession();
    boost::asio::io_context context;
    udp::socket rtp{context, {Local(), 0}};
    udp::socket rtcp{context, {Local(), 0}};
};

TEST_F(RtspUdp, HasAnEvenPortAndTheNextOne) {
    EXPECT_EQ(worker.GetUdpPorts().GetPort() % 2, 0);
    EXPECT_EQ(worker.GetUdpPorts().GetRtcp().local_endpoint().port(), worker.GetUdpPorts().GetPort() + 1);
}

TEST_F(RtspUdp, TakesReportsOfTheViewerAsSignsOfLife) {
    Silence(*session);
    Send(rtcp, Report);
    EXPECT_TRUE(SurvivesSweep(*session));
}

TEST_F(RtspUdp, TakesNothingElseAsASignOfLife) {
    Silence(*session);
    Send(rtp, Report);
    Send(rtcp, "garbage!");
    EXPECT_FALSE(SurvivesSweep(*session));
}

TEST_F(RtspUdp, ForgetsTheViewerWithItsSession) {
    session->End();
    Silence(*session);
    Send(rtcp, Report);
    bool hasExpired = false;
    session->SetOnExpiry([&] { hasExpired = true; });
    session->Sweep(Session::Clock::now());
    EXPECT_TRUE(hasExpired) << "the report does not reach it any more";
}

TEST_F(RtspUdp, SendsWholePacketsToTheViewer) {
    session->Handle({"PLAY", "", "RTSP/1.0", {}, {}}, {"1"}, "");
    session->Deliver(0, std::vector<AccessUnitPtr>{MakeUnit(true, {"first", "last"}, 1)}, false);
    for (std::string const payload : {"first", "last"}) {
        std::array<char, 100> datagram{};
        auto const size = rtp.receive(boost::asio::buffer(datagram));
        EXPECT_EQ(std::string(datagram.data() + 12, size - 12), payload);
    }
}

TEST(RtspUdpBurst, GrowsWithWhatWaits) {
    EXPECT_GE(UdpOutlet::GetBurst(0), 1U);
    EXPECT_LT(UdpOutlet::GetBurst(0), 90U) << "a receive buffer of the usual size takes it";
    EXPECT_GT(UdpOutlet::GetBurst(std::size_t{16} * 1024 * 1024), UdpOutlet::GetBurst(0));
}

} // namespace
} // namespace zarn::host::video::rtsp
