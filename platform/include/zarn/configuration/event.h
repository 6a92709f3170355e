#pragma once

#include <zarn/object/typed.h>

#include <memory>
#include <utility>

namespace zarn::configuration {

class Node;

/// Something happened to a node; what, the derived type tells (event::Changed, event::Added, event::Removed).
/// An event carries no value: its receiver reads the node, which may have changed again meanwhile.
/// Thread: any; events never change.
class Event : public object::Typed<Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.Event";

    /// concerned  the node; never null
    explicit Event(std::shared_ptr<Node> concerned) : node(std::move(concerned)) {}

    /// The node that the event concerns; never null.
    std::shared_ptr<Node> GetNode() const { return node; }

private:
    std::shared_ptr<Node> node;
};

namespace event {

/// An entry was added to a collection; GetNode() is the entry, complete with its values.
class Added : public object::Typed<Added, Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.event.Added";

    using Typed::Typed;
};

/// A value was set, a collection was put in another order, or a new binding is told how its node stands.
class Changed : public object::Typed<Changed, Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.event.Changed";

    using Typed::Typed;
};

/// An entry was removed from a collection; GetNode() is the entry, which can still be read but is in no tree.
class Removed : public object::Typed<Removed, Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.event.Removed";

    using Typed::Typed;
};

} // namespace event
} // namespace zarn::configuration
