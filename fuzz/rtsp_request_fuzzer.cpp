// Bytes on a connection to the RTSP server, before any other code reads them.
#include "host/video/rtsp/base64_decoder.h"
#include "host/video/rtsp/request.h"
#include "host/video/rtsp/stream_path.h"
#include "host/video/rtsp/transport.h"
#include "require.h"

#include <zarn/text/character.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace zarn::fuzz {
namespace {

using namespace host::video::rtsp;

constexpr std::size_t MaximumLength = std::size_t{256} * 1024;

/// With this many bytes, every input can be told; empty lines before it are not counted.
constexpr std::size_t EnoughBytes = MaximumHeader + MaximumBody;

void CheckTransport(Request const& request) {
    auto const transport = ChooseTransport(request.Find("Transport"));
    if (!transport) return;
    if (transport->isInterleaved) {
        Require(!transport->channel || *transport->channel < 255, "there is a channel for RTCP, too");
    } else {
        Require(transport->rtpPort != 0 && transport->rtcpPort != 0, "packets have a destination");
    }
}

void CheckRequest(Request const& request) {
    Require(!request.method.empty() && !request.uri.empty(), "a request has a method and a URI");
    Require(request.version.starts_with("RTSP/") || request.version.starts_with("HTTP/"), "a request has a version");
    Require(request.fields.size() <= MaximumFields, "a request has few fields");
    Require(request.body.size() <= MaximumBody, "a body is no longer than it may be");
    for (auto const& [name, value] : request.fields) {
        Require(!name.empty() && text::IsLine(name), "a field has a name");
        Require(value.find('\n') == std::string::npos, "a field is one line");
    }
    if (auto const path = ParseStreamPath(request.uri)) {
        Require(!path->id.empty() && path->id.find('/') == std::string::npos, "a channel has a name");
        auto const uri = MakeChannelUri(request.uri, path->id, "192.0.2.1:8554");
        Require(ParseStreamPath(uri) == StreamPath{path->id}, "a channel's URI names it");
    }
    CheckTransport(request);
}

/// Reads everything as a connection does.
void CheckConnection(std::string_view bytes) {
    while (!bytes.empty()) {
        auto const input = ParseInput(bytes);
        Require(input.size <= bytes.size(), "nothing is read that is not there");
        if (auto const* incomplete = std::get_if<Input::Incomplete>(&input.what)) {
            Require(incomplete->needed > bytes.size() - input.size, "what is incomplete needs more");
            Require(incomplete->searched <= bytes.size() - input.size, "nothing is searched that is not there");
            Require(bytes.size() - input.size < EnoughBytes, "waiting for more has an end");
            return;
        }
        Require(input.size > 0, "every input takes something");
        if (auto const* request = std::get_if<Request>(&input.what)) CheckRequest(*request);
        if (std::holds_alternative<Input::Refused>(input.what)) return;
        bytes.remove_prefix(input.size);
    }
}

/// A tunnel gives the same bytes, however they are cut.
void CheckTunnel(std::string_view text) {
    auto const whole = Base64Decoder().Decode(text);
    Base64Decoder decoder;
    std::string joined;
    for (auto rest = text; !rest.empty();) {
        auto const size = std::min<std::size_t>(rest.size(), 7);
        auto const part = decoder.Decode(rest.substr(0, size));
        Require(part || !whole, "a text is Base64 however it is cut");
        if (!part) return;
        joined += *part;
        rest.remove_prefix(size);
    }
    Require(whole && *whole == joined, "a tunnel loses nothing");
}

} // namespace
} // namespace zarn::fuzz

/// Every input is a request within its bounds, an interleaved packet, refused, or incomplete; what is incomplete is
/// bounded, too.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    return CheckInput(data, size, MaximumLength, [](std::string_view bytes) {
        CheckConnection(bytes);
        CheckTunnel(bytes);
    });
}
