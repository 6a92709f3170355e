// Datagrams that arbitrary senders can deliver to the discovery port, and their answers.
#include "require.h"

#include <zarn/onvif/discovery/request.h>
#include <zarn/onvif/discovery/response.h>

#include <cstdint>
#include <pugixml.hpp>
#include <string>

namespace zarn::fuzz {
namespace {

using onvif::discovery::Request;
using onvif::discovery::Response;

/// Maximum payload of a datagram.
constexpr std::size_t MaximumLength = 65507;

utilities::name::Config const& GetIdentity() {
    static utilities::name::Config const identity({.manufacturer = "Zarnsuite",
                                                   .model = "Analytics Server",
                                                   .firmware = "1",
                                                   .hardware = "rack",
                                                   .location = "Halle Süd/3",
                                                   .name = "North gate"});
    return identity;
}

bool IsText(std::string const& text) { return IsLine(text, Request::MaximumTextLength); }

void CheckAnswer(Request const& request) {
    Response const response(request.GetMessageId(), request.GetAddress(), 8080, false, GetIdentity());
    Require(response.IsValid(), "what asks for this device can be answered");
    pugi::xml_document document;
    Require(document.load_string(response.GetXML().c_str()), "an answer is XML");
    auto const header = document.child("SOAP-ENV:Envelope").child("SOAP-ENV:Header");
    Require(header.child("wsa:RelatesTo").text().get() == request.GetMessageId(), "an answer names what it relates to");
    Require(header.child("wsa:To").text().get() == request.GetAddress(), "an answer names who it is for");
    Request const echo(response.GetXML());
    Require(!echo.IsParseError(), "an answer is a discovery message");
    Require(echo.GetMessageId().empty(), "an answer is never answered");
}

} // namespace
} // namespace zarn::fuzz

/// Everything kept from a datagram is short and printable, refused datagrams leave nothing behind, and every message
/// that matches the device gets a well-formed answer that is not itself a request.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    if (size > MaximumLength) return 0;
    Request const request(std::string(reinterpret_cast<char const*>(data), size));
    auto const& id = request.GetMessageId();
    auto const& address = request.GetAddress();
    if (request.IsParseError()) {
        Require(id.empty() && address.empty(), "nothing is kept of what cannot be read");
        return 0;
    }
    Require(id.empty() || IsText(id), "a message id is a short line");
    Require(IsText(address), "an address is a short line");
    if (!id.empty()) CheckAnswer(request);
    return 0;
}
