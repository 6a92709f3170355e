#pragma once

#include <zarn/configuration/schema/option.h>

#include <boost/json/fwd.hpp>

#include <memory>
#include <string>

namespace zarn::configuration {

class Node;

namespace node {
struct Place;
}

namespace schema {

/// What a schema says about a node, without its path. Never changes, and is shared by all nodes made of it.
class Description : public std::enable_shared_from_this<Description> {
public:
    virtual ~Description();
    Description(Description const&) = delete;
    Description& operator=(Description const&) = delete;

    /// Makes a node with default values, which is not in the tree yet.
    virtual std::shared_ptr<Node> Create(node::Place const& place) const = 0;

    /// The description in the form of Node::GetSchema.
    virtual boost::json::value ToJson() const = 0;

    Options GetOptions() const noexcept { return options; }

protected:
    Description(std::string descriptionText, Options descriptionOptions);

    /// For a person.
    std::string const& GetText() const noexcept { return text; }

private:
    std::string const text;
    Options const options;
};

} // namespace schema
} // namespace zarn::configuration
