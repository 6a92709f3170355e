#pragma once

#include "configuration/node/children.h"
#include "configuration/node/location.h"

#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/root.h>
#include <zarn/configuration/node/undescribed.h>

#include <boost/json/value.hpp>

#include <memory>

namespace zarn::test {

/// A collection with an entry that is not a map, which no schema can produce.
class OddCollection : public configuration::node::Dynamic {
public:
    explicit OddCollection(configuration::node::Location const& place) : Dynamic(place, nullptr) {
        children->Put(std::make_shared<configuration::node::Undescribed>(MakeLocation("1"), "no map"));
    }
};

/// A configuration whose `channels` is such a collection.
class OddRoot : public configuration::node::Root {
public:
    OddRoot() { children->Put(std::make_shared<OddCollection>(MakeLocation("channels"))); }
};

} // namespace zarn::test
