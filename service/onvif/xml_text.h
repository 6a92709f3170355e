#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zarn::service::onvif {

/// Writes "?" for each byte of what XML cannot carry: control characters, references to them, and texts beyond ASCII
/// with a wrong character in them.
/// isKept   whether XML can carry a text: text::IsXml or text::IsPlainXml
/// Returns  the masked text; nullopt when nothing has to be masked
std::optional<std::string> MaskForXml(std::string_view xml, bool (*isKept)(std::string_view) noexcept);

} // namespace zarn::service::onvif
