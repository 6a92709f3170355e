#include <zarn/meta/data/object.h>

namespace zarn::meta::data {

Object::Object(std::uint32_t number) noexcept : Typed(number) {}

} // namespace zarn::meta::data
