#include "xml_text.h"

#include <zarn/logging/format.h>

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>

namespace zarn::service::onvif {

std::string ToXmlLine(std::string_view text, std::size_t most) {
    auto line = logging::ToLine(text, most);
    boost::replace_all(line, "\xEF\xBF\xBE", "\\uFFFE");
    boost::replace_all(line, "\xEF\xBF\xBF", "\\uFFFF");
    return line;
}

bool IsXmlText(std::string_view text) {
    std::string line(text);
    std::ranges::replace_if(
        line, [](char each) { return each == '\t' || each == '\n' || each == '\r'; }, ' ');
    return ToXmlLine(line, line.size()) == line;
}

} // namespace zarn::service::onvif
