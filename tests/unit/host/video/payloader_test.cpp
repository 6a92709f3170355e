#include "host/video/payloader.h"
#include "host/video/producer.h"
#include "host/video/source.h"
#include "unit/host/video/video_test.h"

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

/// What the server sends at most, without the RTP header.
constexpr std::size_t MostPayload = 1400 - 12;

std::string GetPayload(rtp::Packet const& packet) {
    std::string payload(reinterpret_cast<char const*>(packet.prefix.data()), packet.prefixSize);
    return payload.append(reinterpret_cast<char const*>(packet.body), packet.bodySize);
}

/// The NAL units of a byte stream.
std::vector<std::string> SplitUnit(std::string_view stream) {
    std::vector<std::string> units;
    for (auto begin = stream.find({"\0\0\1", 3}); begin != std::string_view::npos;) {
        begin += 3;
        auto const next = stream.find({"\0\0\1", 3}, begin);
        auto unit = stream.substr(begin, next == std::string_view::npos ? next : next - begin);
        while (unit.ends_with('\0')) unit.remove_suffix(1);
        units.emplace_back(unit);
        begin = next;
    }
    return units;
}

/// The NAL units in payloads. Source: RFC 6184, 5.6 to 5.8.
std::vector<std::string> JoinPayloads(std::vector<rtp::Packet> const& packets) {
    std::vector<std::string> units;
    for (auto const& packet : packets) {
        auto const payload = GetPayload(packet);
        auto const type = payload[0] & 0x1F;
        if (type == 28) { // FU-A
            if ((payload[1] & 0x80) != 0)
                units.emplace_back(1, static_cast<char>((payload[0] & 0xE0) | (payload[1] & 0x1F)));
            units.back().append(payload, 2);
        } else if (type == 24) { // STAP-A
            for (std::size_t at = 1; at < payload.size();) {
                auto const size = static_cast<unsigned char>(payload[at]) * std::size_t{256} +
                                  static_cast<unsigned char>(payload[at + 1]);
                units.push_back(payload.substr(at + 2, size));
                at += 2 + size;
            }
        } else {
            units.push_back(payload);
        }
    }
    return units;
}

/// Access units of test video.
std::vector<MiniHandle<GstSample>> Produce(std::string const& source, std::size_t count) {
    Producer producer(*ParseSource(source).source, {});
    std::vector<MiniHandle<GstSample>> samples;
    while (samples.size() < count) {
        auto result = producer.Pull(1s);
        if (auto* picture = std::get_if<Producer::Picture>(&result)) samples.push_back(std::move(picture->sample));
        if (std::holds_alternative<Failure>(result)) throw std::runtime_error("no test video");
    }
    return samples;
}

constexpr char Snow[] = "test:snow?width=640&height=480&rate=30";

MiniHandle<GstSample> ProduceOne(std::string const& source) { return std::move(Produce(source, 1).front()); }

/// The packets of an access unit; throws when there are none.
std::shared_ptr<rtp::Packets const> Pay(Payloader& payloader, GstSample* sample) {
    auto packets = payloader.Pay(gst_sample_get_buffer(sample), gst_sample_get_caps(sample), 40ms);
    if (!packets) throw std::runtime_error("no packets");
    return packets;
}

std::string GetBytes(GstSample* sample) {
    auto* const buffer = gst_sample_get_buffer(sample);
    std::string bytes(gst_buffer_get_size(buffer), '\0');
    gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
    return bytes;
}

TEST(Payloader, CutsAccessUnitsIntoPacketsThatGiveThemBack) {
    Payloader payloader(Codec::H264);
    std::size_t most = 0;
    for (auto const& sample : Produce(Snow, 5)) {
        auto const packets = Pay(payloader, sample.get());
        EXPECT_EQ(JoinPayloads(packets->list), SplitUnit(GetBytes(sample.get())));
        std::size_t bytes = 0;
        for (auto const& packet : packets->list) {
            EXPECT_LE(packet.GetSize(), MostPayload);
            EXPECT_EQ(packet.marker, &packet == &packets->list.back());
            bytes += packet.GetSize();
        }
        EXPECT_EQ(packets->bytes, bytes);
        most = std::max(most, packets->list.size());
    }
    EXPECT_GT(most, 10U) << "no access unit was cut";
}

TEST(Payloader, SharesTheMemoryOfTheAccessUnit) {
    Payloader payloader(Codec::H264);
    auto const sample = ProduceOne(Snow);
    auto* const buffer = gst_sample_get_buffer(sample.get());
    auto const packets = Pay(payloader, sample.get());
    GstMapInfo map;
    ASSERT_TRUE(gst_buffer_map(buffer, &map, GST_MAP_READ));
    std::size_t shared = 0;
    for (auto const& packet : packets->list) {
        auto const* const body = reinterpret_cast<guint8 const*>(packet.body);
        if (body >= map.data && body + packet.bodySize <= map.data + map.size) shared += packet.bodySize;
    }
    gst_buffer_unmap(buffer, &map);
    EXPECT_GT(shared, packets->bytes * 9 / 10);
}

TEST(Payloader, KeepsTheMemoryOfTheAccessUnit) {
    Payloader payloader(Codec::H264);
    auto sample = ProduceOne(Snow);
    auto const bytes = GetBytes(sample.get());
    auto const packets = Pay(payloader, sample.get());
    sample.reset();
    EXPECT_EQ(JoinPayloads(packets->list), SplitUnit(bytes));
}

TEST(Payloader, DescribesH264) {
    Payloader payloader(Codec::H264);
    auto const packets = Pay(payloader, ProduceOne(Small).get());
    EXPECT_EQ(packets->format->media, "video");
    EXPECT_EQ(packets->format->payloadType, 96);
    EXPECT_EQ(packets->format->clockRate, 90000U);
    EXPECT_THAT(packets->format->attributes, Contains("rtpmap:96 H264/90000"));
    EXPECT_THAT(packets->format->attributes, Contains("framerate:10"));
    EXPECT_THAT(packets->format->attributes, Contains(AllOf(StartsWith("fmtp:96 "), HasSubstr("packetization-mode=1"),
                                                            HasSubstr("sprop-parameter-sets="))));
}

TEST(Payloader, DescribesH265) {
    Payloader payloader(Codec::H265);
    auto const packets = Pay(payloader, ProduceOne("test:ball?codec=h265&width=128&height=96&rate=10").get());
    EXPECT_THAT(packets->format->attributes, Contains("rtpmap:96 H265/90000"));
    EXPECT_THAT(packets->format->attributes,
                Contains(AllOf(HasSubstr("sprop-vps="), HasSubstr("sprop-sps="), HasSubstr("sprop-pps="))));
}

TEST(Payloader, MakesNothingOfWhatIsNoVideo) {
    Payloader payloader(Codec::H264);
    MiniHandle<GstCaps> const caps(gst_caps_from_string("video/x-h264,stream-format=byte-stream,alignment=au"));
    MiniHandle<GstBuffer> const buffer(gst_buffer_new_memdup("nothing", 7));
    payloader.Pay(buffer.get(), caps.get(), 0s);
    EXPECT_NO_THROW(Pay(payloader, ProduceOne(Small).get())) << "it goes on after that";
}

} // namespace
} // namespace zarn::host::video
