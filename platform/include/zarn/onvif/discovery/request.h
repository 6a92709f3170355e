#pragma once

#include <cstddef>
#include <string>

namespace zarn::onvif::discovery {

/// A datagram for the discovery port, read as a WS-Discovery message. What matters of it is whether it is a
/// Probe for a device such as this one.
///
/// Understood are SOAP 1.2 envelopes with WS-Discovery of 2005/04 and WS-Addressing headers of 2004/08 or 2005/08. A
/// message asks for this device when its body has a Probe, its Action, if any, says so too, and
/// - its Types are absent, empty, or name at least one of `tds:Device` and `dn:NetworkVideoTransmitter`;
/// - its Scopes are absent, or each is one that a device of this kind can have (see MayMatchScopes). The identity is
///   not known here: a scope below `hardware`, `manufacturer`, `location` or `name` is taken to match whatever it says,
///   and the client sees by the scopes of the answer whether it does.
///
/// Immutable. Thread: any. Source: WS-Discovery 2005/04, 5.2 Probe; ONVIF Core Specification, 7.3 Device discovery.
class Request {
public:
    /// The longest message in bytes.
    static constexpr std::size_t MaximumSize = std::size_t{64} * 1024;
    /// How deep elements may be nested.
    static constexpr int MaximumDepth = 64;
    /// The longest message id and the longest address in bytes.
    static constexpr std::size_t MaximumTextLength = 1024;
    /// How many of a Probe's types are read; further types are ignored.
    static constexpr std::size_t MaximumTypes = 64;

    /// Reads a message. Never throws because of its contents.
    explicit Request(std::string const& text);

    /// True when the message is not a SOAP 1.2 envelope: XML that is not well formed, another encoding than UTF-8,
    /// invalid UTF-8, a document type declaration, an element with more than 64 attributes, or a bound above on size,
    /// depth or text exceeded. Message id and address are empty then. These errors are accepted, since clients make
    /// them: white space or comments before the XML declaration, a declaration without version, "--" in a comment, and
    /// a reference to a character that XML cannot carry (other than 0), except in message id and address.
    bool IsParseError() const noexcept { return parseError; }

    /// The MessageID of a Probe that asks for this device, which the answer relates to. Empty for a message that is not
    /// to be answered: another kind of message, a Probe for other devices, or one without MessageID.
    std::string const& GetMessageId() const noexcept { return messageId; }

    /// The address of ReplyTo, which the answer carries in its header (the answer goes to the source of the datagram);
    /// the anonymous role http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous when the message has none.
    std::string const& GetAddress() const noexcept { return address; }

private:
    bool parseError = true;
    std::string messageId;
    std::string address;
};

} // namespace zarn::onvif::discovery
