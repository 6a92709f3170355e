#include "host/video/source.h"

#include "host/video/check_source.h"
#include "host/video/test_pattern.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace zarn::host::video {
namespace {

constexpr std::size_t MaximumLength = 2048;
constexpr std::uint32_t MinimumSide = 64;
constexpr std::uint32_t MaximumWidth = 3840;
constexpr std::uint32_t MaximumHeight = 2160;
constexpr std::int32_t MaximumRate = 60;

ParsedSource Wrong(std::string error) { return {std::nullopt, std::move(error)}; }

std::string Quote(std::string_view text) { return "\"" + std::string(text) + "\""; }

/// A decimal number without sign that fills the whole text.
std::optional<std::uint32_t> ParseNumber(std::string_view text) {
    std::uint32_t value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<std::uint32_t> ParseSide(std::string_view text, std::uint32_t maximum) {
    auto const value = ParseNumber(text);
    if (!value || *value < MinimumSide || *value > maximum || *value % 2 != 0) return std::nullopt;
    return value;
}

/// A frame rate of 1 to 60 frames per second in numbers that GStreamer can reckon with.
std::optional<FrameRate> ParseTestRate(std::string_view text) {
    constexpr std::int32_t Largest = 1'000'000;
    auto const rate = ParseFrameRate(text);
    if (!rate || rate->denominator == 0 || rate->numerator > Largest || rate->denominator > Largest)
        return std::nullopt;
    if (rate->numerator < rate->denominator || rate->numerator > MaximumRate * rate->denominator) return std::nullopt;
    return rate;
}

/// One parameter of a test source: returns false when the value is against the rule.
struct Parameter {
    std::string_view name;
    std::string_view rule;
    bool (*set)(TestSource&, std::string_view);
};

template <class Member, class Value>
bool Assign(Member& member, std::optional<Value> const& value) {
    if (value) member = *value;
    return value.has_value();
}

constexpr std::array Parameters{
    Parameter{"codec", "h264 or h265",
              [](TestSource& test, std::string_view value) { return Assign(test.codec, CodecFromName(value)); }},
    Parameter{
        "width", "an even number from 64 to 3840",
        [](TestSource& test, std::string_view value) { return Assign(test.width, ParseSide(value, MaximumWidth)); }},
    Parameter{
        "height", "an even number from 64 to 2160",
        [](TestSource& test, std::string_view value) { return Assign(test.height, ParseSide(value, MaximumHeight)); }},
    Parameter{"rate", "a frame rate from 1 to 60, such as 25 or 30000/1001",
              [](TestSource& test, std::string_view value) { return Assign(test.rate, ParseTestRate(value)); }},
};

/// Sets one `name=value`; returns what is wrong.
std::string SetParameter(TestSource& test, std::string_view text) {
    auto const equals = text.find('=');
    auto const name = text.substr(0, equals);
    auto const row = std::ranges::find(Parameters, name, &Parameter::name);
    if (row == Parameters.end()) return "test: unknown parameter " + Quote(name) + " (codec, width, height, rate)";
    auto const value = equals == std::string_view::npos ? std::string_view() : text.substr(equals + 1);
    if (row->set(test, value)) return {};
    return "test: " + std::string(name) + ": " + Quote(value) + " is not " + std::string(row->rule);
}

ParsedSource ParseTest(std::string_view text) {
    auto const question = text.find('?');
    TestSource test;
    test.pattern = text.substr(0, question);
    if (std::ranges::find(TestPatterns, test.pattern) == TestPatterns.end()) {
        return Wrong("test: unknown pattern " + Quote(test.pattern) + " (for example ball, smpte, snow)");
    }
    while (!text.empty() && text.find_first_of("?&") != std::string_view::npos) {
        text.remove_prefix(text.find_first_of("?&") + 1);
        if (auto error = SetParameter(test, text.substr(0, text.find('&'))); !error.empty())
            return Wrong(std::move(error));
    }
    return {test, {}};
}

/// The part of a URL that follows the host; npos when the host is not properly closed.
std::size_t EndOfHost(std::string_view authority) {
    if (!authority.starts_with('[')) return std::min(authority.find(':'), authority.size());
    auto const bracket = authority.find(']');
    return bracket == std::string_view::npos ? bracket : bracket + 1;
}

ParsedSource ParseRtsp(std::string_view text) {
    auto const begin = text.find("://") + 3;
    auto const authority = text.substr(begin, text.find_first_of("/?#", begin) - begin);
    if (authority.find('@') != std::string_view::npos) {
        return Wrong("rtsp: credentials belong into the channel's user and password, not into the source");
    }
    auto const end = EndOfHost(authority);
    if (end == 0 || end == std::string_view::npos) return Wrong("rtsp: " + Quote(authority) + " names no host");
    if (end < authority.size()) {
        auto const port = authority[end] == ':' ? ParseNumber(authority.substr(end + 1)) : std::nullopt;
        if (!port || *port == 0 || *port > 65535) {
            return Wrong("rtsp: " + Quote(authority.substr(end)) + " is not a port (:1 to :65535)");
        }
    }
    if (text.find(' ') != std::string_view::npos) return Wrong("rtsp: the URL holds a space");
    return {RtspSource{std::string(text)}, {}};
}

ParsedSource ParseDevice(std::string_view text) {
    constexpr std::string_view Folder = "/dev/";
    if (!text.starts_with(Folder) || text.size() == Folder.size() || text.find("..") != std::string_view::npos) {
        return Wrong("v4l2: " + Quote(text) + " is not a device below /dev/, such as /dev/video0");
    }
    return {DeviceSource{std::string(text)}, {}};
}

struct Kind {
    std::string_view prefix;
    std::size_t skip; ///< characters of the prefix that do not belong to what is parsed
    ParsedSource (*parse)(std::string_view);
};

constexpr std::array Kinds{
    Kind{"test:", 5, ParseTest},
    Kind{"rtsp://", 0, ParseRtsp},
    Kind{"rtsps://", 0, ParseRtsp},
    Kind{"v4l2:", 5, ParseDevice},
};

bool IsControl(char character) { return static_cast<unsigned char>(character) < 0x20 || character == 0x7f; }

} // namespace

ParsedSource ParseSource(std::string_view text) {
    if (text.empty()) return Wrong("the source is empty");
    if (text.size() > MaximumLength) return Wrong("the source is longer than 2048 characters");
    if (std::ranges::any_of(text, IsControl)) return Wrong("the source holds a control character");
    for (auto const& kind : Kinds) {
        if (text.starts_with(kind.prefix)) return kind.parse(text.substr(kind.skip));
    }
    if (auto const colon = text.find("://"); colon != std::string_view::npos) {
        return Wrong(Quote(text.substr(0, colon + 3)) +
                     " is not a kind of source (test:PATTERN, rtsp://, v4l2:/dev/videoN or a file)");
    }
    return {FileSource{std::string(text)}, {}};
}

std::optional<std::string> CheckSource(std::string_view source) {
    if (source.empty()) return std::nullopt;
    auto parsed = ParseSource(source);
    if (parsed.source) return std::nullopt;
    return std::move(parsed.error);
}

std::string WithoutSecrets(std::string_view source) {
    auto const scheme = source.find("://");
    if (scheme == std::string_view::npos) return std::string(source);
    auto const start = scheme + 3;
    auto rest = source.substr(start);
    if (auto const user = rest.rfind('@'); user != std::string_view::npos) rest.remove_prefix(user + 1);
    return std::string(source.substr(0, start)).append(rest.substr(0, rest.find('?')));
}

} // namespace zarn::host::video
