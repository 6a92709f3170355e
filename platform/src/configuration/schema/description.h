#pragma once

#include <zarn/configuration/schema.h>
#include <zarn/object/object.h>

#include <boost/json/fwd.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::configuration {

class Node;

namespace node {
struct Location;
}

namespace schema {

/// What a schema says about a node, without its path. Never changes, and is shared by all nodes made of it.
class Description : public std::enable_shared_from_this<Description> {
public:
    virtual ~Description() = default;
    Description(Description const&) = delete;
    Description& operator=(Description const&) = delete;

    /// Makes a node with default values, which is not in the tree yet.
    virtual std::shared_ptr<Node> Create(node::Location const& location) const = 0;

    /// The description in the form of Node::GetSchema.
    virtual boost::json::value ToJson() const = 0;

    Options GetOptions() const noexcept { return options; }

protected:
    Description(std::string descriptionText, Options descriptionOptions)
        : text(std::move(descriptionText)), options(descriptionOptions) {}

    /// For a person.
    std::string const& GetText() const noexcept { return text; }

private:
    std::string const text;
    Options const options;
};

/// Describes a collection: what its entries are made of.
class CollectionDescription : public Description {
public:
    CollectionDescription(std::vector<Schema> entrySchemas, std::string descriptionText, Options descriptionOptions,
                          Rule<std::string> entryKeyRule);

    std::shared_ptr<Node> Create(node::Location const& location) const override;
    boost::json::value ToJson() const override;

    /// The members of an entry.
    std::vector<Schema> const& GetEntry() const noexcept { return entry; }

    /// Throws Error for the collection's path when the rule refuses the key of an entry.
    void CheckKey(std::string_view key, std::string const& path) const;

private:
    std::vector<Schema> const entry;
    Rule<std::string> const keyRule;
};

/// Describes a value: its type, default and rule. The values given to it must be of its type.
class ValueDescription : public Description {
public:
    using Value = std::shared_ptr<object::Object const>;

    virtual Value GetDefault() const = 0;

    /// The value that a text or a JSON value stands for. Throws Error for the path when it is of another type or is
    /// refused.
    virtual Value FromText(std::string const& path, std::string_view valueText) const = 0;
    virtual Value FromJson(std::string const& path, boost::json::value const& json) const = 0;

    /// Throws Error for the path when the rule refuses the value.
    virtual void Check(std::string const& path, object::Object const& value) const = 0;

    virtual boost::json::value WriteJson(object::Object const& value) const = 0;
    virtual std::string WriteText(object::Object const& value) const = 0;
    virtual bool IsEqual(object::Object const& left, object::Object const& right) const = 0;

protected:
    using Description::Description;
};

} // namespace schema
} // namespace zarn::configuration
