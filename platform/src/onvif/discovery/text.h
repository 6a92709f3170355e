#pragma once

#include <string_view>
#include <vector>

namespace zarn::onvif::discovery {

/// True when XML can carry the text: it is UTF-8 and has no control characters but tab, line feed and carriage return.
/// Source: XML 1.0, 2.2 Characters.
bool IsXmlText(std::string_view text) noexcept;

/// True when XML can carry the text and it is one line without any control characters.
bool IsXmlLine(std::string_view text) noexcept;

/// The text without white space around it. Source: XML 1.0, 2.3.
std::string_view Trim(std::string_view text) noexcept;

/// The items of a list that white space separates.
std::vector<std::string_view> Split(std::string_view text);

} // namespace zarn::onvif::discovery
