#include <zarn/object/object.h>

namespace zarn::object {

struct BadCast::Text {
    std::string typeName;
    std::string what;
};

namespace {

std::string Describe(std::string const& typeName, std::string const& path, std::string const& actual) {
    std::string const subject = path.empty() ? "object" : path;
    if (actual.empty()) return subject + " is not a " + typeName;
    return subject + " is a " + actual + ", not a " + typeName;
}

} // namespace

BadCast::BadCast(std::string const& typeName, std::string const& path, std::string const& actual)
    : text(std::make_shared<Text const>(Text{typeName, Describe(typeName, path, actual)})) {}

std::string const& BadCast::GetTypeName() const noexcept { return text->typeName; }

char const* BadCast::what() const noexcept { return text->what.c_str(); }

Object::~Object() = default;

std::uint32_t Object::GetTypeHash() const noexcept { return type::Hash(TypeName); }

char const* Object::GetTypeName() const noexcept { return TypeName; }

bool Object::HasType(std::uint32_t typeHash) const noexcept { return typeHash == type::Hash(TypeName); }

BadCast Object::BadCastError(char const* typeName) const { return BadCast(typeName, {}, GetTypeName()); }

} // namespace zarn::object
