#pragma once

#include <zarn/object/typed.h>

#include <memory>

namespace zarn::configuration {

class Node;

/// Something happened to a node; what, the derived type tells (event::Changed, event::Added, event::Removed).
/// An event carries no value: whoever wants it reads the node, which may have changed again meanwhile.
/// Thread: any; events never change.
class Event : public object::Typed<Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.Event";

    explicit Event(std::shared_ptr<Node> concerned);

    /// The node that the event concerns; never null.
    std::shared_ptr<Node> GetNode() const;

private:
    std::shared_ptr<Node> node;
};

} // namespace zarn::configuration
