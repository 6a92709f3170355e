#include "configuration/change.h"
#include "configuration/node/children.h"
#include "configuration/node/location.h"
#include "configuration/notification.h"
#include "configuration/schema/description.h"
#include "configuration/schema/quote.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/map.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/node/root.h>
#include <zarn/configuration/node/undescribed.h>
#include <zarn/configuration/schema.h>

#include <boost/json/value.hpp>

#include <algorithm>
#include <utility>

namespace zarn::configuration::node {

Map::Map(Location const& location) : Typed(location), children(std::make_unique<Children>()) {}

Map::~Map() = default;

std::shared_ptr<Node> Map::Find(boost::string_view nodePath) const {
    std::shared_ptr<Node> node;
    Map const* map = this;
    for (std::string_view rest(nodePath.data(), nodePath.size());;) {
        std::size_t const dot = rest.find('.');
        // Replaced only after the look-up in the map that it holds.
        node = map->children->Find(rest.substr(0, dot));
        if (dot == std::string_view::npos || !node) return node;
        if (!node->Is<Map>()) return nullptr;
        map = &node->As<Map>();
        rest.remove_prefix(dot + 1);
    }
}

Map::Iterator Map::begin() const { return Iterator(children->GetSnapshot()); }

Map::Iterator Map::end() const noexcept { return {}; }

std::size_t Map::GetSize() const { return children->GetSize(); }

bool Map::IsStated() const {
    return wasRead || std::any_of(begin(), end(), [](auto const& child) { return child->IsStated(); });
}

// Reading

void Map::FromJson(boost::json::value const& json, Unknown unknown) {
    Commit(*this, [&](Notification& notification) {
        Change change(unknown);
        Prepare(json, change);
        change.Apply(notification);
    });
}

void Map::Prepare(boost::json::value const& json, Change& change) {
    auto const* const object = json.if_object();
    if (!object) throw Error(GetPath(), schema::Quote(json) + " is not an object");
    Plan(*object, true, change);
}

bool Map::PrepareAbsent(Change& change) {
    Plan({}, false, change);
    return true;
}

void Map::Plan(boost::json::object const& object, bool read, Change& change) {
    List after;
    for (auto const& member : object) {
        std::string_view const childKey(member.key().data(), member.key().size());
        auto child = children->Find(childKey);
        if (child) {
            child->Prepare(member.value(), change);
        } else {
            child = MakeUnknown(childKey, member.value(), change);
        }
        after.push_back(std::move(child));
    }
    for (auto const& child : *this) {
        if (!object.contains(child->GetKey()) && PrepareMissing(*child, change)) after.push_back(child);
    }
    change.Add([this, after = std::move(after), read](Notification& notification) {
        wasRead = read;
        Rearrange(after, notification);
    });
}

std::shared_ptr<Node> Map::MakeUnknown(std::string_view childKey, boost::json::value const& json,
                                       Change const& change) const {
    RequireKey(childKey, GetPath());
    if (change.GetUnknown() == Unknown::Refuse) throw Error(JoinPath(GetPath(), childKey), "unknown key");
    return std::make_shared<Undescribed>(MakeLocation(childKey), json);
}

bool Map::PrepareMissing(Node& child, Change& change) { return child.PrepareAbsent(change); }

void Map::Rearrange(List after, Notification&) {
    for (auto const& child : after) Attach(*child);
    children->Assign(std::move(after));
}

void Map::ReadNew(Node& node, boost::json::value const& json, Unknown unknown) {
    Change change(unknown);
    node.Prepare(json, change);
    // The node is not in the tree yet, so it has no listeners.
    Notification unheard;
    change.Apply(unheard);
}

void Map::MarkRead(Map& map) noexcept { map.wasRead = true; }

// Writing

bool Map::IsWritten(Layer layer) const {
    return wasRead || IsWrittenEmpty() ||
           std::any_of(begin(), end(), [layer](auto const& child) { return child->IsWritten(layer); });
}

bool Map::IsWrittenEmpty() const noexcept { return false; }

boost::json::value Map::Write(Layer layer) const {
    boost::json::object object;
    for (auto const& child : *this) {
        if (child->IsWritten(layer)) object.emplace(child->GetKey(), child->Write(layer));
    }
    return object;
}

boost::json::value Map::WriteSchema() const {
    boost::json::object properties;
    for (auto const& child : *this) properties.emplace(child->GetKey(), child->WriteSchema());
    return {{"type", "object"}, {"properties", std::move(properties)}};
}

boost::json::value Map::WriteSchemaOf(Node const& node) { return node.WriteSchema(); }

std::vector<std::string> Map::GetUndescribed() const {
    auto const lock = GetLock();
    std::vector<std::string> paths;
    for (auto const& child : *this) {
        if (child->Is<Undescribed>()) paths.push_back(child->GetPath());
        if (child->Is<Map>()) std::ranges::move(child->As<Map>().GetUndescribed(), std::back_inserter(paths));
    }
    return paths;
}

// Describing

void Map::Schema(std::vector<configuration::Schema> const& schemas) {
    auto const lock = GetLock();
    for (auto const& schema : schemas) Register(schema);
}

void Map::Register(configuration::Schema const& schema) {
    auto keys = SplitPath(schema.GetPath());
    for (auto const& part : keys) RequireKey(part, JoinPath(GetPath(), schema.GetPath()));
    auto const last = keys.back();
    keys.pop_back();
    auto map = std::static_pointer_cast<Map>(shared_from_this());
    for (auto const& part : keys) map = map->RequireMap(part);
    map->Describe(last, *schema.GetDescription());
}

std::shared_ptr<Map> Map::RequireMap(std::string_view childKey) {
    auto const child = children->Find(childKey);
    if (child && child->Is<Map>()) return std::static_pointer_cast<Map>(child);
    if (child && !child->Is<Undescribed>()) throw Error(child->GetPath(), "a value has no members");
    RequireSchemaAccepted();
    auto map = std::make_shared<Map>(MakeLocation(childKey));
    Adopt(map, child.get());
    return map;
}

void Map::Describe(std::string_view childKey, schema::Description const& description) {
    auto const child = children->Find(childKey);
    if (child && !child->Is<Undescribed>()) return;
    RequireSchemaAccepted();
    Adopt(description.Create(MakeLocation(childKey)), child.get());
}

void Map::Adopt(std::shared_ptr<Node> const& node, Node const* undescribed) {
    if (undescribed) ReadNew(*node, undescribed->Write(Layer::Persisted), Unknown::Keep);
    Attach(*node);
    children->Put(node);
}

bool Map::AcceptsSchema() const noexcept { return true; }

void Map::RequireSchemaAccepted() const {
    if (!AcceptsSchema()) throw Error(GetPath(), "the entries of a collection come from the collection's own schema");
}

Location Map::MakeLocation(std::string_view childKey) const {
    return {treeMutex, std::string(childKey), JoinPath(GetPath(), childKey)};
}

void Map::Attach(Node& child) { child.parent = std::static_pointer_cast<Map>(shared_from_this()); }

void Map::Detach(Node& child) { child.parent.reset(); }

void ThrowMissing(char const* typeName, Map const& map, std::string_view path) {
    throw object::BadCast(typeName, JoinPath(map.GetPath(), path));
}

// What no schema describes yet

Undescribed::Undescribed(Location const& location, boost::json::value const& json)
    : Typed(location), content(std::make_unique<boost::json::value>(json)) {}

Undescribed::~Undescribed() = default;

bool Undescribed::IsStated() const { return true; }

void Undescribed::Prepare(boost::json::value const& json, Change& change) {
    change.Add([this, json](Notification&) { *content = json; });
}

bool Undescribed::PrepareAbsent(Change&) { return false; }

bool Undescribed::IsWritten(Layer layer) const { return layer == Layer::Persisted; }

boost::json::value Undescribed::Write(Layer) const { return *content; }

boost::json::value Undescribed::WriteSchema() const { return boost::json::object(); }

// The tree

Root::Root() : Typed(Location{std::make_shared<std::recursive_mutex>(), {}, {}}) {}

Root::~Root() = default;

} // namespace zarn::configuration::node
