#pragma once

#include <zarn/meta/meta.h>

namespace zarn::meta::data {

/// A frame of the kind that the analytics make, the same every time: two tracked objects, of which one could be either
/// of two classes and has a colour. Thread: any.
Meta GetSampleMeta();

} // namespace zarn::meta::data
