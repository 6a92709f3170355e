#include "host/video/source.h"

#include <zarn/network/authority.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>
#include <utility>

namespace zarn::host::video {
namespace {

constexpr std::array<std::string_view, 26> TestPatterns{
    "smpte",
    "snow",
    "black",
    "white",
    "red",
    "green",
    "blue",
    "checkers-1",
    "checkers-2",
    "checkers-4",
    "checkers-8",
    "circular",
    "blink",
    "smpte75",
    "zone-plate",
    "gamut",
    "chroma-zone-plate",
    "solid-color",
    "ball",
    "smpte100",
    "bar",
    "pinwheel",
    "spokes",
    "gradient",
    "colors",
    "smpte-rp-219",
};

constexpr std::size_t MaximumLength = 2048;
constexpr std::uint32_t MinimumSide = 64;
constexpr std::uint32_t MaximumWidth = 3840;
constexpr std::uint32_t MaximumHeight = 2160;
constexpr std::int32_t MaximumRate = 60;

std::string Quote(std::string_view text) { return "\"" + std::string(text) + "\""; }

/// A decimal number without sign that fills the whole text.
template <class Number>
std::optional<Number> ParseNumber(std::string_view text) {
    Number value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || std::cmp_less(value, 0)) return std::nullopt;
    return value;
}

std::optional<std::uint32_t> ParseSide(std::string_view text, std::uint32_t maximum) {
    auto const value = ParseNumber<std::uint32_t>(text);
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

/// A parameter of a test source; `set` returns false when the value breaks the rule.
struct Parameter {
    std::string_view name;
    std::string_view rule;
    bool (*set)(TestEncoding&, std::string_view);
};

template <class Member, class Value>
bool Assign(Member& member, std::optional<Value> const& value) {
    if (value) member = *value;
    return value.has_value();
}

constexpr std::array Parameters{
    Parameter{"codec", "h264 or h265",
              [](TestEncoding& test, std::string_view value) { return Assign(test.codec, CodecFromName(value)); }},
    Parameter{
        "width", "an even number from 64 to 3840",
        [](TestEncoding& test, std::string_view value) { return Assign(test.width, ParseSide(value, MaximumWidth)); }},
    Parameter{"height", "an even number from 64 to 2160",
              [](TestEncoding& test, std::string_view value) {
                  return Assign(test.height, ParseSide(value, MaximumHeight));
              }},
    Parameter{"rate", "a frame rate from 1 to 60, such as 25 or 30000/1001",
              [](TestEncoding& test, std::string_view value) { return Assign(test.rate, ParseTestRate(value)); }},
};

/// Sets one `name=value`; returns what is wrong.
std::string SetParameter(TestEncoding& test, std::string_view text) {
    auto const equals = text.find('=');
    auto const name = text.substr(0, equals);
    auto const row = std::ranges::find(Parameters, name, &Parameter::name);
    if (row == Parameters.end()) return "test: unknown parameter " + Quote(name) + " (codec, width, height, rate)";
    auto const value = equals == std::string_view::npos ? std::string_view() : text.substr(equals + 1);
    if (row->set(test, value)) return {};
    return "test: " + std::string(name) + ": " + Quote(value) + " is not " + std::string(row->rule);
}

/// Reads what follows the prefix of a kind, and adds to the source; returns what is wrong.
std::string ReadTest(std::string_view& text, Source& source) {
    auto parameters = text;
    text = text.substr(0, text.find('?'));
    if (std::ranges::find(TestPatterns, text) == TestPatterns.end())
        return "test: unknown pattern " + Quote(text) + " (for example ball, smpte, snow)";
    source.properties.push_back({"is-live", "true"});
    source.test.emplace();
    while (parameters.find_first_of("?&") != std::string_view::npos) {
        parameters.remove_prefix(parameters.find_first_of("?&") + 1);
        if (auto error = SetParameter(*source.test, parameters.substr(0, parameters.find('&'))); !error.empty())
            return error;
    }
    return {};
}

std::string ReadRtsp(std::string_view& text, Source& source) {
    auto const begin = text.find("://") + 3;
    auto const authority = text.substr(begin, text.find_first_of("/?#", begin) - begin);
    if (authority.find('@') != std::string_view::npos)
        return "rtsp: credentials belong into the channel's user and password, not into the source";
    if (!network::ParseAuthority(authority))
        return "rtsp: " + Quote(authority) + " is not HOST or HOST:PORT (1 to 65535)";
    if (text.find(' ') != std::string_view::npos) return "rtsp: the URL holds a space";
    source.isRemote = true;
    for (auto const* name : {"tcp-timeout", "timeout"}) source.properties.push_back({name, "5000000"}); // microseconds
    source.properties.push_back({"latency", "200"});                                                    // milliseconds
    source.properties.push_back({"user-agent", "zarn-host"});
    return {};
}

std::string ReadDevice(std::string_view& text, Source&) {
    constexpr std::string_view Folder = "/dev/";
    if (text.starts_with(Folder) && text.size() > Folder.size() && text.find("..") == std::string_view::npos) return {};
    return "v4l2: " + Quote(text) + " is not a device below /dev/, such as /dev/video0";
}

std::string ReadFile(std::string_view& text, Source& source) {
    source.isLive = false;
    auto const colon = text.find("://");
    if (colon == std::string_view::npos) return {};
    return Quote(text.substr(0, colon + 3)) + " is not a kind of source (" + SourceForms + ")";
}

/// All that differs between kinds of sources.
struct Kind {
    std::string_view prefix; ///< of the text
    std::size_t skip;        ///< characters of the prefix that do not belong to the target
    char const* element;     ///< GStreamer's, which opens it
    char const* property;    ///< of the element, that takes the target
    std::string (*read)(std::string_view& target, Source& source);
};

constexpr std::array Kinds{
    Kind{"test:", 5, "videotestsrc", "pattern", ReadTest}, Kind{"rtsp://", 0, "rtspsrc", "location", ReadRtsp},
    Kind{"rtsps://", 0, "rtspsrc", "location", ReadRtsp},  Kind{"v4l2:", 5, "v4l2src", "device", ReadDevice},
    Kind{"", 0, "filesrc", "location", ReadFile},
};

bool IsControl(char character) { return static_cast<unsigned char>(character) < 0x20 || character == 0x7f; }

} // namespace

std::optional<FrameRate> ParseFrameRate(std::string_view text) {
    auto const slash = text.find('/');
    auto const numerator = ParseNumber<std::int32_t>(text.substr(0, slash));
    auto const denominator = slash == std::string_view::npos ? 1 : ParseNumber<std::int32_t>(text.substr(slash + 1));
    if (!numerator || !denominator) return std::nullopt;
    return FrameRate{*numerator, *denominator};
}

ParsedSource ParseSource(std::string_view text) {
    if (text.empty()) return {{}, "the source is empty"};
    if (text.size() > MaximumLength) return {{}, "the source is longer than 2048 characters"};
    if (std::ranges::any_of(text, IsControl)) return {{}, "the source holds a control character"};
    auto const kind = std::ranges::find_if(Kinds, [&](Kind const& row) { return text.starts_with(row.prefix); });
    Source source{.element = kind->element, .properties = {}, .test = {}};
    auto target = text.substr(kind->skip);
    if (auto error = kind->read(target, source); !error.empty()) return {{}, std::move(error)};
    source.properties.push_back({kind->property, std::string(target)});
    return {std::move(source), {}};
}

std::optional<std::string> CheckSource(std::string_view text) {
    if (text.empty()) return std::nullopt;
    auto parsed = ParseSource(text);
    if (parsed.source) return std::nullopt;
    return std::move(parsed.error);
}

std::string WithoutSecrets(std::string_view text) {
    auto const scheme = text.find("://");
    if (scheme == std::string_view::npos) return std::string(text);
    auto const start = scheme + 3;
    auto rest = text.substr(start);
    if (auto const user = rest.rfind('@'); user != std::string_view::npos) rest.remove_prefix(user + 1);
    return std::string(text.substr(0, start)).append(rest.substr(0, rest.find('?')));
}

std::span<std::string_view const> GetTestPatterns() { return TestPatterns; }

} // namespace zarn::host::video
