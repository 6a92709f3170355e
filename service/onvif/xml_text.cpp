#include "xml_text.h"

#include <zarn/text/character.h>

#include <algorithm>

namespace zarn::service::onvif {

namespace {

bool IsAscii(char each) { return static_cast<unsigned char>(each) < 0x80; }

} // namespace

void MaskForXml(std::string& text) {
    for (auto at = text.begin(); at != text.end();) {
        auto const end = IsAscii(*at) ? at + 1 : std::find_if(at, text.end(), IsAscii);
        if (!text::IsPlainXml({at, end})) std::fill(at, end, '?');
        at = end;
    }
}

} // namespace zarn::service::onvif
