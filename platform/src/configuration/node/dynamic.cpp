#include "configuration/change.h"
#include "configuration/node/children.h"
#include "configuration/node/location.h"
#include "configuration/notification.h"
#include "configuration/schema/description.h"
#include "configuration/schema/quote.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/event.h>
#include <zarn/configuration/node/dynamic.h>

#include <boost/json/value.hpp>

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace zarn::configuration::node {

namespace {

using List = std::vector<std::shared_ptr<Node>>;
using Set = std::unordered_set<std::shared_ptr<Node>>;

/// The nodes of a list that are in a set, or those that are not.
List Select(List const& list, Set const& set, bool contained) {
    List selected;
    std::ranges::copy_if(list, std::back_inserter(selected),
                         [&](auto const& node) { return set.contains(node) == contained; });
    return selected;
}

} // namespace

Dynamic::Dynamic(Location const& location, std::shared_ptr<schema::CollectionDescription const> collectionDescription)
    : Typed(location), description(std::move(collectionDescription)) {}

Dynamic::~Dynamic() = default;

std::shared_ptr<Map> Dynamic::MakeEntry(std::string_view entryKey) const {
    RequireKey(entryKey, GetPath());
    description->CheckKey(entryKey, GetPath());
    auto entry = std::make_shared<Map>(MakeLocation(entryKey));
    entry->Schema(description->GetEntry());
    MarkRead(*entry);
    return entry;
}

std::shared_ptr<Map> Dynamic::Add(std::string_view entryKey) {
    std::shared_ptr<Map> entry;
    Commit(*this, [&](Notification& notification) {
        if (children->Find(entryKey)) throw Error(JoinPath(GetPath(), entryKey), "the key is taken");
        entry = MakeEntry(entryKey);
        Attach(*entry);
        children->Put(entry);
        notification.Add(std::make_shared<event::Added const>(entry));
    });
    return entry;
}

bool Dynamic::Remove(std::string_view entryKey) {
    std::shared_ptr<Node> entry;
    Commit(*this, [&](Notification& notification) {
        entry = children->Remove(entryKey);
        if (!entry) return;
        notification.Add(std::make_shared<event::Removed const>(entry));
        Detach(*entry);
    });
    return entry != nullptr;
}

void Dynamic::Reorder(std::vector<std::string> const& keys) {
    Commit(*this, [&](Notification& notification) {
        List after;
        Set given;
        for (auto const& entryKey : keys) {
            auto const entry = children->Find(entryKey);
            if (!entry) throw Error(GetPath(), schema::Quote(entryKey) + " is not the key of an entry");
            if (!given.insert(entry).second) throw Error(GetPath(), schema::Quote(entryKey) + " is given twice");
            after.push_back(entry);
        }
        if (after.size() != GetSize()) throw Error(GetPath(), "an order needs the keys of all entries");
        Rearrange(std::move(after), notification);
    });
}

void Dynamic::Rearrange(List after, Notification& notification) {
    auto const before = children->GetSnapshot();
    Set const old(before->begin(), before->end());
    Set const young(after.begin(), after.end());
    for (auto const& entry : Select(*before, young, false)) {
        notification.Add(std::make_shared<event::Removed const>(entry));
        Detach(*entry);
    }
    for (auto const& entry : Select(after, old, false)) {
        Attach(*entry);
        notification.Add(std::make_shared<event::Added const>(entry));
    }
    if (Select(*before, young, true) != Select(after, old, true)) {
        notification.Add(std::make_shared<event::Changed const>(shared_from_this()));
    }
    children->Assign(std::move(after));
}

std::shared_ptr<Node> Dynamic::MakeUnknown(std::string_view childKey, boost::json::value const& json,
                                           Change const& change) const {
    auto entry = MakeEntry(childKey);
    ReadNew(*entry, json, change.GetUnknown());
    return entry;
}

bool Dynamic::PrepareMissing(Node&, Change&) { return false; }

bool Dynamic::IsWrittenEmpty() const noexcept { return !description->GetOptions().Has(schema::Option::Optional); }

boost::json::value Dynamic::WriteSchema() const { return description->ToJson(); }

bool Dynamic::AcceptsSchema() const noexcept { return false; }

} // namespace zarn::configuration::node
