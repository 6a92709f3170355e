#include "host/video/rtp/sender.h"

#include <openssl/rand.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace zarn::host::video::rtp {
namespace {

constexpr unsigned Version = 2U << 6;
constexpr unsigned SenderReport = 200;
constexpr unsigned SourceDescription = 202;
constexpr unsigned Goodbye = 203;
constexpr char CanonicalName = 1;

/// Seconds from the beginning of NTP's time, 1900, to that of the system's clock, 1970.
constexpr std::uint64_t NtpOffset = 2'208'988'800;

template <class Number>
Number MakeRandom() {
    Number number{};
    if (RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof(number)) != 1)
        throw std::runtime_error("the system gives no random bytes for an RTP stream");
    return number;
}

void Append16(std::string& text, std::uint32_t number) {
    text += static_cast<char>(number >> 8 & 0xFF);
    text += static_cast<char>(number & 0xFF);
}

void Append32(std::string& text, std::uint32_t number) {
    Append16(text, number >> 16);
    Append16(text, number & 0xFFFF);
}

/// Header of an RTCP packet.
/// count  of sources or reports
/// words  32-bit words that follow the header
void AppendHeader(std::string& text, unsigned count, unsigned type, std::size_t words) {
    text += static_cast<char>(Version | count);
    text += static_cast<char>(type);
    Append16(text, static_cast<std::uint32_t>(words));
}

void AppendNtp(std::string& text, std::chrono::system_clock::time_point now) {
    auto const since = std::chrono::duration_cast<std::chrono::nanoseconds>(now.time_since_epoch()).count();
    auto const nanoseconds = static_cast<std::uint64_t>(since);
    constexpr std::uint64_t Second = 1'000'000'000;
    Append32(text, static_cast<std::uint32_t>(nanoseconds / Second + NtpOffset));
    Append32(text, static_cast<std::uint32_t>((nanoseconds % Second << 32) / Second));
}

void Write32(std::byte* out, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) *out++ = static_cast<std::byte>(number >> shift & 0xFF);
}

} // namespace

Sender::Sender()
    : source(MakeRandom<std::uint32_t>()),
      firstTimestamp(MakeRandom<std::uint32_t>()),
      sequence(MakeRandom<std::uint16_t>()) {}

std::string Sender::GetName() const {
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%08X", static_cast<unsigned>(source));
    return text.data();
}

std::uint32_t Sender::ToTimestamp(std::chrono::nanoseconds time, std::uint32_t clockRate) const {
    constexpr std::int64_t Second = 1'000'000'000;
    auto const count = time.count();
    // In two steps, because a product of years would overflow.
    auto const ticks = count / Second * clockRate + count % Second * clockRate / Second;
    return firstTimestamp + static_cast<std::uint32_t>(ticks);
}

void Sender::WriteHeader(std::byte* out, Packet const& packet, std::uint8_t payloadType, std::uint16_t number,
                         std::uint32_t timestamp) const {
    out[0] = static_cast<std::byte>(Version);
    out[1] = static_cast<std::byte>(payloadType | (packet.marker ? 0x80U : 0U));
    out[2] = static_cast<std::byte>(number >> 8);
    out[3] = static_cast<std::byte>(number & 0xFF);
    Write32(out + 4, timestamp);
    Write32(out + 8, source);
}

std::uint16_t Sender::TakeSequence(std::size_t packets) {
    return std::exchange(sequence, static_cast<std::uint16_t>(sequence + packets));
}

void Sender::Count(std::size_t packets, std::size_t octets) {
    packetCount += static_cast<std::uint32_t>(packets);
    octetCount += static_cast<std::uint32_t>(octets);
}

std::string Sender::MakeReport(std::chrono::system_clock::time_point now, std::uint32_t timestamp) const {
    std::string text;
    AppendHeader(text, 0, SenderReport, 6);
    Append32(text, source);
    AppendNtp(text, now);
    Append32(text, timestamp);
    Append32(text, packetCount);
    Append32(text, octetCount);
    AppendHeader(text, 1, SourceDescription, 4);
    Append32(text, source);
    text.append({CanonicalName, 8}).append(GetName()).append(2, '\0'); // the list ends with at least one zero
    return text;
}

std::string Sender::MakeGoodbye(std::chrono::system_clock::time_point now, std::uint32_t timestamp) const {
    auto text = MakeReport(now, timestamp);
    AppendHeader(text, 1, Goodbye, 1);
    Append32(text, source);
    return text;
}

bool IsRtcp(std::string_view bytes) {
    if (bytes.size() < 8) return false;
    auto const type = static_cast<unsigned char>(bytes[1]);
    return (static_cast<unsigned char>(bytes[0]) & 0xC0U) == Version && type >= SenderReport && type <= 207;
}

} // namespace zarn::host::video::rtp
