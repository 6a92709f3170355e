#pragma once

#include <utility>

namespace zarn::service::onvif {

/// Fills an object that was just allocated in a context and returns it. Null stays null: a member for which there is no
/// memory is left out of the response.
template <class T, class Fill>
T* Filled(T* object, Fill&& fill) {
    if (object) std::forward<Fill>(fill)(*object);
    return object;
}

} // namespace zarn::service::onvif
