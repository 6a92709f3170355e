#pragma once

#include <zarn/configuration/event.h>
#include <zarn/object/typed.h>
#include <zarn/type/binding.h>
#include <zarn/type/flags.h>

#include <boost/json/fwd.hpp>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zarn::configuration {

class Change;
class Notification;

namespace node {

class Map;
struct Location;

namespace binding {

class Subscription;

/// How Node::Bind binds a callback.
enum class Option : unsigned short {
    /// The current value is delivered once, as event::Changed of the bound node, before Bind returns.
    DeliverCurrent = 1,
};

/// A set of options.
using Options = type::Flags<Option, unsigned short, 64>;

} // namespace binding

} // namespace node

/// Which of its values a node is asked for.
enum class Layer {
    /// What belongs into the file: overrides are left out, and so are read-only values and optional members that the
    /// file did not state and that hold their default. Write-only values are in it.
    Persisted,
    /// What holds now, overrides included. Write-only values are left out, and so are optional members that are
    /// not stated.
    Effective,
    /// What holds when nothing is stated. Write-only values are left out; collections are empty.
    Default,
};

/// Holds the lock of a whole configuration tree until it is destroyed, see Node::GetLock.
/// Move-only; belongs to the thread that took it.
class Lock {
public:
    /// Takes the lock, waiting for it when another thread has it.
    explicit Lock(std::shared_ptr<std::recursive_mutex> treeMutex) : mutex(std::move(treeMutex)), guard(*mutex) {}

    Lock(Lock&&) noexcept = default;
    Lock& operator=(Lock&&) = delete;
    ~Lock() = default;

private:
    /// Keeps the mutex alive when the tree goes first; declared first, so that it outlives the guard.
    std::shared_ptr<std::recursive_mutex> mutex;
    std::unique_lock<std::recursive_mutex> guard;
};

/// A node of the configuration tree: a value (node::Value), a map of nodes (node::Map), a collection of maps that can
/// be added and removed (node::Dynamic), or the tree itself (node::Root).
///
/// A path is the keys from the root down to a node, joined by dots: "settings.web_port", "channels.1.name". A node's
/// key and path never change. Nodes are held by shared pointers; a node that was removed from its collection, or whose
/// tree is gone, can still be read.
///
/// Thread: any thread may call anything at any time. A single read is always of one state; hold GetLock
/// for several reads of the same state.
class Node : public object::Typed<Node>, public std::enable_shared_from_this<Node> {
public:
    static constexpr char const* TypeName = "zarn.configuration.Node";

    /// Called with each event of a binding.
    using Callback = std::function<void(std::shared_ptr<Event const>)>;

    ~Node() override;
    Node(Node const&) = delete;
    Node& operator=(Node const&) = delete;

    /// The dotted path from the root, such as "channels.1"; empty for the root.
    std::string GetPath() const;

    /// The last component of the path; empty for the root.
    std::string const& GetKey() const noexcept;

    /// Locks the whole tree against changes until the returned lock is destroyed.
    /// The same thread may take it again, and may change the tree while it holds it. Reading needs no lock.
    [[nodiscard]] Lock GetLock() const;

    /// The error for taking this node for a type that it is not; names the node's path.
    /// typeName  the type that was asked for
    object::BadCast BadCastError(char const* typeName) const override;

    /// Calls back for every event of this node and of the nodes below it, until the returned binding is released.
    ///
    /// The callback runs on the thread that made the change, after the change, holding no lock of the tree but one that
    /// this thread had taken by itself. A binding's events are delivered one at a time and in the order of the changes:
    /// while one thread is in the callback, events of other threads are left to it, and so are those of changes that
    /// the callback makes itself. Waiting event::Changed of the same node become one.
    ///
    /// What the callback throws comes out of the call that delivered to it (Bind, or the call that made the change,
    /// unless another thread was in the callback already), after the change is complete and every other callback has
    /// been called; of several, the first.
    ///
    /// When the release of the binding returns, the callback is not running and never will again, and its captures are
    /// destroyed. The release waits for a callback that is running on another thread, so it must hold no lock which
    /// that callback needs. Released from inside its own callback it does not wait; the callback is then destroyed when
    /// it returns.
    ///
    /// callback  must not be empty (throws std::invalid_argument)
    [[nodiscard]] type::Binding Bind(Callback callback, node::binding::Options options = {});

    /// Whether this node was given a value: it is in what was last read by FromJson, differs from its default, or
    /// is overridden. A map is stated when it was read or when anything in it is stated.
    virtual bool IsStated() const = 0;

    /// The values of this node and those below it, in the order of the children, all of one moment.
    /// Throws Error ": the configuration value is write only" when asked of a write-only value for a layer without it.
    boost::json::value ToJson(Layer layer) const;

    /// The description of this node and those below it. A value: an object with "type" ("boolean", "string", "integer"
    /// or "number"), "default", "readOnly", "writeOnly", "description". A map: "type" ("object") and "properties". A
    /// collection: "type" ("object"), "description" and "additionalProperties", the description of an entry.
    boost::json::value GetSchema() const;

protected:
    /// Made by the map or collection that holds the node.
    explicit Node(node::Location const& location);

private:
    friend class Notification;
    friend class node::Map;

    /// Checks what would be read into this node and plans the change; throws Error, changing nothing.
    /// Called with the lock of the tree, like the others below.
    virtual void Prepare(boost::json::value const& json, Change& change) = 0;

    /// Plans the change for a node that is not in what is read. Returns false when the node is to be removed.
    virtual bool PrepareAbsent(Change& change) = 0;

    /// Whether this node is part of what its map gives for a layer.
    virtual bool IsWritten(Layer layer) const = 0;

    virtual boost::json::value Write(Layer layer) const = 0;
    virtual boost::json::value WriteSchema() const = 0;

    void Unbind(node::binding::Subscription& subscription) noexcept;

    std::shared_ptr<std::recursive_mutex> const treeMutex;
    std::string const key;
    std::string const path;
    /// Guarded by the lock of the tree; empty for the root and for a node that was removed.
    std::weak_ptr<node::Map> parent;

    std::mutex subscriptionsMutex;
    std::vector<std::shared_ptr<node::binding::Subscription>> subscriptions;
};

} // namespace zarn::configuration
