#pragma once

#include <zarn/utilities/name/config.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::onvif::discovery {

/// The scopes of the device in the order in which clients are told them, such as
/// "onvif://www.onvif.org/type/video_encoder". Those of the identity end with its texts as they are, blanks and all.
/// Source: ONVIF Core Specification, 7.3 Device discovery.
std::vector<std::string> ListScopes(utilities::name::Config const& nameConfig);

/// The same in the form of the answer to a Probe: separated by blanks, the texts of the identity percent-encoded
/// (RFC 3986, 2.1; "/" is kept, since they may be paths).
std::string MakeScopes(utilities::name::Config const& nameConfig);

/// Whether each of the scopes that a Probe asks for is one that a device of this kind can have. A scope that depends on
/// the identity is taken to match whatever it says after its category.
/// scopes   absolute URIs
/// matchBy  the rule: empty or http://schemas.xmlsoap.org/ws/2005/04/discovery/rfc3986 (or .../rfc2396, its name in the
///          first edition) compares scheme and authority without case and the path by whole segments from its
///          beginning, and a path with a segment "." or ".." matches nothing; .../strcmp0 compares the whole text. By a
///          rule that is not known, nothing matches.
/// Source: WS-Discovery 2005/04, 5.1 Matching Types and Scopes.
bool MayMatchScopes(std::span<std::string_view const> scopes, std::string_view matchBy);

} // namespace zarn::onvif::discovery
