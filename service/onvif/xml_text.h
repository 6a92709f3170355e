#pragma once

#include <string>

namespace zarn::service::onvif {

/// Replaces every byte that XML cannot carry (see text::IsPlainXml), and the other bytes beyond ASCII beside it, by
/// "?". The length stays.
void MaskForXml(std::string& text);

} // namespace zarn::service::onvif
