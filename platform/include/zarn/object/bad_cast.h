#pragma once

#include <memory>
#include <string>
#include <typeinfo>

namespace zarn::object {

/// An object was asked for as a type that it is not.
class BadCast : public std::bad_cast {
public:
    /// typeName  the name of the type that was asked for
    /// path      the path of the object in its tree; empty when it has none or is the root
    /// actual    the name of the type that the object has; empty when unknown
    explicit BadCast(std::string const& typeName, std::string const& path = {}, std::string const& actual = {});

    /// The name of the type that was asked for.
    std::string const& GetTypeName() const noexcept;

    /// For a person, such as "settings.web_port is a zarn.configuration.node.UInt16, not a
    /// zarn.configuration.node.Bool".
    char const* what() const noexcept override;

private:
    struct Text;
    /// Shared, because copying an exception must not fail.
    std::shared_ptr<Text const> text;
};

} // namespace zarn::object
