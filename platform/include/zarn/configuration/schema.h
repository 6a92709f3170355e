#pragma once

#include <zarn/configuration/schema/rule.h>
#include <zarn/type/flags.h>

#include <boost/json/fwd.hpp>

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zarn::configuration {

namespace schema {

/// What is special about a node.
enum class Option : unsigned short {
    /// The program sets it; text, JSON and files must not change it, and files do not hold it.
    ReadOnly = 1,
    /// It can be set, and files hold it, but it is never shown, nor quoted in errors.
    WriteOnly = 2,
    /// Files hold it only when they did before or when it differs from its default.
    Optional = 4,
};

/// A set of options.
using Options = type::Flags<Option, unsigned short, 64>;

class Description;

/// The types that a value can have.
template <class T>
concept Storable = std::same_as<T, bool> || std::same_as<T, std::string> || std::same_as<T, std::uint16_t> ||
    std::same_as<T, std::uint32_t> || std::same_as<T, std::int32_t> || std::same_as<T, std::int64_t> ||
    std::same_as<T, double>;

/// Describes a value; the constructors of Schema call it.
template <Storable T>
std::shared_ptr<Description const> DescribeValue(T defaultValue, std::string text, Options options, Rule<T> rule);

} // namespace schema

/// Describes one node below the map that it is given to, see node::Map::Schema. Copying is cheap.
class Schema {
public:
    /// Describes a value.
    /// path          dotted, relative to the map
    /// defaultValue  what holds when nothing is stated; need not follow the rule
    /// description   for a person
    /// rule          which values are accepted; by default all of the type
    template <schema::Storable T>
    Schema(std::string path, T defaultValue, std::string description, schema::Options options = {},
           schema::Rule<T> rule = {})
        : Schema(std::move(path),
                 schema::DescribeValue<T>(std::move(defaultValue), std::move(description), options, std::move(rule))) {}

    /// Describes a text with a literal as its default.
    Schema(std::string path, char const* defaultValue, std::string description, schema::Options options = {},
           schema::Rule<std::string> rule = {});

    /// Describes a collection (node::Dynamic).
    /// entry    the members of every entry, in the order in which new entries have them
    /// keyRule  which keys entries may have; by default all keys
    static Schema Collection(std::string path, std::vector<Schema> entry, std::string description,
                             schema::Options options = {}, schema::Rule<std::string> keyRule = {});

    /// The path, relative to the map that the schema is given to.
    std::string const& GetPath() const noexcept;

    /// What is described; for the configuration itself.
    std::shared_ptr<schema::Description const> const& GetDescription() const noexcept;

    /// The description as JSON, in the form of Node::GetSchema.
    boost::json::value ToJson() const;

private:
    Schema(std::string nodePath, std::shared_ptr<schema::Description const> nodeDescription);

    std::string path;
    std::shared_ptr<schema::Description const> description;
};

} // namespace zarn::configuration
