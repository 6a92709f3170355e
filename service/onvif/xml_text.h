#pragma once

#include <string>
#include <string_view>

namespace zarn::service::onvif {

/// A text of a client as one line that XML can carry, `most` bytes at most (what is cut off is counted at the end).
/// gSOAP takes references to any character and bytes that are no UTF-8, and writes them as they are. Control characters
/// and such bytes become `\xNN`, U+FFFE and U+FFFF become `\uFFFE` and `\uFFFF`. Source: XML 1.0, 2.2 Characters.
std::string ToXmlLine(std::string_view text, std::size_t most);

/// Whether a text, which may have several lines, can be written as it is.
bool IsXmlText(std::string_view text);

} // namespace zarn::service::onvif
