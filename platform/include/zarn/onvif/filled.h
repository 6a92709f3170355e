#pragma once

#include <utility>

namespace zarn::onvif {

/// Fills an object that was just allocated in a gSOAP context and returns it. Null stays null: a member for which there
/// is no memory is left out of the message.
template <class T, class Fill>
T* Filled(T* object, Fill&& fill) {
    if (object) std::forward<Fill>(fill)(*object);
    return object;
}

/// Appends an object that was just made, unless there was no memory for it.
template <class List, class T>
void Append(List& list, T* object) {
    if (object) list.push_back(object);
}

} // namespace zarn::onvif
