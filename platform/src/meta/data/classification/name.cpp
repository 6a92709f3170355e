#include <zarn/meta/data/classification/name.h>

#include <utility>

namespace zarn::meta::data::classification {

Name::Name(std::string text) noexcept : value(std::move(text)) {}

} // namespace zarn::meta::data::classification
