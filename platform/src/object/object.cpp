#include <zarn/object/object.h>

namespace zarn::object {

Object::~Object() = default;

std::uint32_t Object::GetTypeHash() const noexcept { return type::Hash(TypeName); }

char const* Object::GetTypeName() const noexcept { return TypeName; }

bool Object::HasType(std::uint32_t typeHash) const noexcept { return typeHash == type::Hash(TypeName); }

BadCast Object::BadCastError(char const* typeName) const { return BadCast(typeName, {}, GetTypeName()); }

} // namespace zarn::object
