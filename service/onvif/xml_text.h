#pragma once

#include <string>
#include <string_view>

namespace zarn::service::onvif {

/// Whether XML can carry a text, of one line or several: it is UTF-8 without control characters but white space, and
/// without U+FFFE and U+FFFF. Control characters that XML only discourages count as well.
/// Source: XML 1.0, 2.2 Characters.
bool IsXmlText(std::string_view text);

/// Puts "?" in the place of every byte that XML cannot carry, and of the other bytes beyond ASCII beside it. The length
/// stays.
void MaskForXml(std::string& text);

} // namespace zarn::service::onvif
