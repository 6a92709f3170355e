#include "configuration/schema/description.h"

#include <utility>

namespace zarn::configuration::schema {

Description::Description(std::string descriptionText, Options descriptionOptions)
    : text(std::move(descriptionText)), options(descriptionOptions) {}

Description::~Description() = default;

} // namespace zarn::configuration::schema
