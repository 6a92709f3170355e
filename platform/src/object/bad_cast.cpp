#include <zarn/object/bad_cast.h>

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

} // namespace zarn::object
