#pragma once

#include <zarn/configuration/node.h>
#include <zarn/object/container/const_iterator.h>

#include <boost/utility/string_view.hpp>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::configuration {

class Schema;

/// What reading does with keys that no schema describes.
enum class Unknown {
    /// They are errors.
    Refuse,
    /// They are kept as node::Undescribed until a schema describes them, and are written back until then.
    Keep,
};

namespace schema {
class Description;
}

namespace node {

class Children;

/// A node that holds nodes by key, in an order.
/// The order is that in which the nodes were described, until FromJson puts those that it reads first, in their order
/// there.
class Map : public object::Typed<Map, Node> {
public:
    static constexpr char const* TypeName = "zarn.configuration.node.Map";

    /// Walks over a snapshot of the children.
    using Iterator = object::container::ConstIterator<std::shared_ptr<Node>>;

    /// Made by Schema and Dynamic::Add only.
    explicit Map(Location const& location);
    ~Map() override;

    /// The node with a path relative to this one ("name", "video.width"); null for an unknown or empty
    /// path. Takes the same short time whatever the number of children.
    std::shared_ptr<Node> Find(boost::string_view nodePath) const;

    /// The children in their order. What is walked over is a snapshot: changes made meanwhile are not seen and do no
    /// harm.
    Iterator begin() const;
    Iterator end() const noexcept;

    /// The number of children.
    std::size_t GetSize() const;

    /// Registers descriptions, whose paths are relative to this node, and makes the nodes that are missing, maps on the
    /// way included. A node that is described already stays as it is: the first description counts, and casting
    /// to another type fails. A value that was read before it was described is adopted when it
    /// fits. Throws Error when an adopted value does not fit, when a path leads through a value or a collection, or
    /// when it has a part that is not a key (1 to 64 letters, digits, '-' and '_'); the descriptions before that one
    /// are then registered.
    void Schema(std::vector<configuration::Schema> const& schemas);

    /// Reads values. What is not in the object takes its default; entries of collections that are not in it are
    /// removed. All or nothing: throws Error before anything is changed when a value does not fit, when a read-only
    /// value would change, or when a key is unknown (unless unknown keys shall be kept). Bound callbacks are called
    /// after everything is changed.
    void FromJson(boost::json::value const& json, Unknown unknown = Unknown::Refuse);

    /// The paths of what was read and kept, but described by no schema so far, in the order of the tree.
    std::vector<std::string> GetUndescribed() const;

    bool IsStated() const override;

protected:
    /// The children in their order.
    using List = std::vector<std::shared_ptr<Node>>;

    /// The node to be made for a key that is read and has none; it is complete, but not in the tree yet.
    virtual std::shared_ptr<Node> MakeUnknown(std::string_view childKey, boost::json::value const& json,
                                              Change const& change) const;

    /// Plans the change for a child that is not in what is read. Returns false when the node is to be removed.
    virtual bool PrepareMissing(Node& child, Change& change);

    /// Replaces all children.
    virtual void Rearrange(List after, Notification& notification);

    /// Whether the map is written even when nothing in it is.
    virtual bool IsWrittenEmpty() const noexcept;

    boost::json::value WriteSchema() const override;

    /// Where a new child is.
    Location MakeLocation(std::string_view childKey) const;

    /// Reads into a node that is not in the tree yet.
    static void ReadNew(Node& node, boost::json::value const& json, Unknown unknown);

    /// The description of another node, for derived classes.
    static boost::json::value WriteSchemaOf(Node const& node);

    /// Makes this the parent of a node. Called with the lock of the tree.
    void Attach(Node& child);

    /// Leaves a node without a parent. Called with the lock of the tree.
    static void Detach(Node& child);

    /// Makes a map one that was read, which is written even when it is empty.
    static void MarkRead(Map& map) noexcept;

    /// The children by key and in their order.
    std::unique_ptr<Children> const children;

private:
    void Prepare(boost::json::value const& json, Change& change) override;
    bool PrepareAbsent(Change& change) override;
    bool IsWritten(Layer layer) const override;
    boost::json::value Write(Layer layer) const override;

    /// Whether schemas may make children here.
    virtual bool AcceptsSchema() const noexcept;

    void Plan(boost::json::object const& object, bool read, Change& change);
    void Register(configuration::Schema const& schema);
    void Describe(std::string_view childKey, schema::Description const& description);
    std::shared_ptr<Map> RequireMap(std::string_view childKey);
    void RequireSchemaAccepted() const;
    void Adopt(std::shared_ptr<Node> const& node, Node const* undescribed);

    std::atomic<bool> wasRead = false;
};

} // namespace node
} // namespace zarn::configuration
