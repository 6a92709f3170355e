#include "host/web/admission.h"

namespace zarn::host::web {

Admission::Slot Admission::BeginExchange(Limits const& limits) {
    std::size_t present = *exchanges;
    do {
        if (present >= limits.exchanges) return {};
    } while (!exchanges->compare_exchange_weak(present, present + 1));
    return {this, [exchanges = exchanges](void const*) { --*exchanges; }};
}

} // namespace zarn::host::web
