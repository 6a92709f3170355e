#include "host/video/rtsp/transport.h"

#include <zarn/text/character.h>

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <charconv>
#include <limits>
#include <tuple>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

using boost::iequals;

/// Removes the text before a separator, and the separator, and returns it without white space at its ends.
std::string_view ReadPart(std::string_view& text, char separator) {
    auto const end = std::min(text.find(separator), text.size());
    auto const part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return text::Trim(part);
}

/// Reads "4-5" or "4", which means the same.
template <class Number>
std::optional<std::pair<Number, Number>> ReadPair(std::string_view text) {
    auto const read = [](std::string_view digits) -> std::optional<Number> {
        Number number = 0;
        auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
        return number;
    };
    auto const first = read(ReadPart(text, '-'));
    if (!first) return std::nullopt;
    if (text.empty()) {
        if (*first == std::numeric_limits<Number>::max()) return std::nullopt;
        return std::pair(*first, static_cast<Number>(*first + 1));
    }
    auto const second = read(text::Trim(text));
    if (!second) return std::nullopt;
    return std::pair(*first, *second);
}

bool IsPlay(std::string_view mode) { return iequals(text::Trim(mode, "\""), "PLAY"); }

/// Applies a parameter; false when it asks for something that is not served.
bool Apply(std::string_view name, std::string_view value, Transport& transport) {
    if (iequals(name, "multicast")) return false;
    if (iequals(name, "mode")) return IsPlay(value);
    if (iequals(name, "interleaved")) {
        auto const channels = ReadPair<std::uint8_t>(value);
        if (!channels || channels->second != channels->first + 1) return false;
        transport.channel = channels->first;
    }
    if (iequals(name, "client_port")) {
        auto const ports = ReadPair<std::uint16_t>(value);
        if (!ports || ports->first == 0 || ports->second == 0) return false;
        std::tie(transport.rtpPort, transport.rtcpPort) = *ports;
    }
    return true;
}

std::optional<Transport> Read(std::string_view form) {
    auto const protocol = ReadPart(form, ';');
    Transport transport{.isInterleaved = iequals(protocol, "RTP/AVP/TCP")};
    if (!transport.isInterleaved && !iequals(protocol, "RTP/AVP") && !iequals(protocol, "RTP/AVP/UDP"))
        return std::nullopt;
    while (!form.empty()) {
        auto value = ReadPart(form, ';');
        auto const name = ReadPart(value, '=');
        if (!Apply(name, value, transport)) return std::nullopt;
    }
    if (!transport.isInterleaved && transport.rtpPort == 0) return std::nullopt;
    return transport;
}

} // namespace

std::optional<Transport> ChooseTransport(std::string_view field) {
    while (!field.empty()) {
        if (auto const transport = Read(ReadPart(field, ','))) return transport;
    }
    return std::nullopt;
}

} // namespace zarn::host::video::rtsp
