#include "xml_text.h"

#include <zarn/logging/format.h>

#include <algorithm>

namespace zarn::service::onvif {

namespace {

bool IsXmlControlSpace(char each) { return each == '\t' || each == '\n' || each == '\r'; }

bool IsAscii(char each) { return static_cast<unsigned char>(each) < 0x80; }

} // namespace

bool IsXmlText(std::string_view text) {
    std::string line(text);
    std::ranges::replace_if(line, IsXmlControlSpace, ' ');
    auto const holds = [&](std::string_view character) { return line.find(character) != std::string::npos; };
    return logging::ToLine(line, line.size()) == line && !holds("\xEF\xBF\xBE") && !holds("\xEF\xBF\xBF");
}

void MaskForXml(std::string& text) {
    for (auto at = text.begin(); at != text.end();) {
        auto const end = IsAscii(*at) ? at + 1 : std::find_if(at, text.end(), IsAscii);
        if (!IsXmlText({at, end})) std::fill(at, end, '?');
        at = end;
    }
}

} // namespace zarn::service::onvif
