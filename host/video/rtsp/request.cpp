#include "host/video/rtsp/request.h"

#include <zarn/text/character.h>

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <charconv>
#include <optional>

namespace zarn::host::video::rtsp {
namespace {

constexpr char InterleavedMark = '$';
constexpr std::size_t InterleavedHeader = 4;

Input ParseInterleaved(std::string_view text) {
    if (text.size() < InterleavedHeader) return {Input::Incomplete{InterleavedHeader}};
    auto const byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    std::size_t const size = byte(2) * std::size_t{256} + byte(3);
    if (text.size() < InterleavedHeader + size) return {Input::Incomplete{InterleavedHeader + size}};
    return {Input::Interleaved{byte(1), text.substr(InterleavedHeader, size)}, InterleavedHeader + size};
}

/// The size of a header up to the empty line, inclusive; none when it has no end.
/// searched  bytes in which it does not end
std::optional<std::size_t> FindHeaderSize(std::string_view text, std::size_t searched) {
    constexpr std::size_t LongestEnd = 3; // the end of the last field, and CR LF
    for (auto at = searched - std::min(searched, LongestEnd - 1);; ++at) {
        at = text.find('\n', at);
        if (at == std::string_view::npos) return std::nullopt;
        auto const next = text.substr(at + 1, LongestEnd - 1);
        if (next.starts_with('\n')) return at + 2;
        if (next == "\r\n") return at + LongestEnd;
    }
}

/// Removes a line, which has an end, and returns it without its end.
std::string_view ReadLine(std::string_view& text) {
    auto const end = text.find('\n');
    auto line = text.substr(0, end);
    text.remove_prefix(end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// Removes a word and the blank after it.
std::string_view ReadWord(std::string_view& line) {
    auto const end = std::min(line.find(' '), line.size());
    auto const word = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return word;
}

bool ReadRequestLine(std::string_view line, Request& request) {
    if (!text::IsLine(line)) return false;
    request.method = ReadWord(line);
    request.uri = ReadWord(line);
    request.version = ReadWord(line);
    return !request.method.empty() && !request.uri.empty() && line.empty() &&
           (request.version.starts_with("RTSP/") || request.version.starts_with("HTTP/"));
}

bool ReadField(std::string_view line, Request& request) {
    auto const colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) return false;
    auto const name = line.substr(0, colon);
    if (name.find_first_of(" \t") != std::string_view::npos || !text::IsLine(name)) return false;
    auto const value = text::Trim(line.substr(colon + 1));
    // It may be sent back or logged. Tabs are white space.
    bool const isLine = std::ranges::all_of(value, [](char each) { return each == '\t' || text::IsLine({&each, 1}); });
    if (isLine) request.fields.emplace_back(name, value);
    return isLine;
}

/// The length of the body; none when the field is no number. An absent field means 0.
std::optional<std::size_t> ReadLength(Request const& request) {
    auto const text = request.Find("Content-Length");
    std::size_t length = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error == std::errc::result_out_of_range) return MaximumBody + 1;
    if (!text.empty() && (error != std::errc() || end != text.data() + text.size())) return std::nullopt;
    return length;
}

} // namespace

std::string_view Request::Find(std::string_view name) const {
    auto const found =
        std::ranges::find_if(fields, [name](auto const& field) { return boost::iequals(field.first, name); });
    return found == fields.end() ? std::string_view() : found->second;
}

Input ParseInput(std::string_view text, std::size_t searched) {
    auto const begin = std::min(text.find_first_not_of("\r\n"), text.size());
    auto rest = text.substr(begin);
    if (rest.empty()) return {Input::Incomplete(), begin};
    if (rest.front() == InterleavedMark) {
        auto input = ParseInterleaved(rest);
        input.size += begin;
        return input;
    }
    auto const refuse = [&](std::optional<Status> status, Request const& request) {
        return Input{Input::Refused{status, std::string(request.Find("CSeq"))}, text.size()};
    };
    Request request;
    auto const start = rest.substr(0, MaximumHeader);
    auto const headerSize = FindHeaderSize(start, searched - std::min(searched, begin));
    if (!headerSize) {
        if (start.size() == MaximumHeader) return refuse({}, request);
        return {Input::Incomplete{start.size() + 1, start.size()}, begin};
    }
    auto lines = start.substr(0, *headerSize);
    if (!ReadRequestLine(ReadLine(lines), request)) return refuse(Status::BadRequest, request);
    for (auto line = ReadLine(lines); !line.empty(); line = ReadLine(lines)) {
        if (request.fields.size() == MaximumFields) return refuse({}, request);
        if (!ReadField(line, request)) return refuse(Status::BadRequest, request);
    }

    // The body of a tunnel's POST request is the tunnel, and has no end.
    bool const isTunnel = request.version.starts_with("HTTP/");
    auto const length = isTunnel ? std::size_t{0} : ReadLength(request);
    if (!length) return refuse(Status::BadRequest, request);
    if (*length > MaximumBody) return refuse(Status::EntityTooLarge, request);
    auto const size = *headerSize + *length;
    if (rest.size() < size) return {Input::Incomplete{size}, begin};
    request.body = rest.substr(*headerSize, *length);
    return {std::move(request), begin + size};
}

} // namespace zarn::host::video::rtsp
