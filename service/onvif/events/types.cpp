#include "types.h"

#include "conversions.h"
#include "descriptions.h"

namespace zarn::service::onvif::events {

constexpr std::array<Type, 4> Types{{
    {"FieldDetector", descriptions::FieldDetector, conversions::FieldDetector},
    {"LineDetector", descriptions::LineDetector, conversions::LineDetector},
    {"LoiteringDetector", descriptions::LoiteringDetector, conversions::LoiteringDetector},
    {"CountAggregation", descriptions::CountAggregation, conversions::CountAggregation},
}};

} // namespace zarn::service::onvif::events
