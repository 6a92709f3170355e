#pragma once

#include <limits>

namespace zarn::service::onvif {

/// Values that optional members of capability records point at instead of allocating one each. gSOAP's members are
/// pointers to mutable values; nothing ever writes through them, so all threads may share these.
inline bool TrueValue = true;
inline bool FalseValue = false;
inline int IntMax = std::numeric_limits<int>::max();

} // namespace zarn::service::onvif
