#include "configuration/change.h"
#include "configuration/node/place.h"

#include <zarn/configuration/node/undescribed.h>

#include <boost/json/value.hpp>

namespace zarn::configuration::node {

Undescribed::Undescribed(Place const& place, boost::json::value const& json)
    : Typed(place), content(std::make_unique<boost::json::value>(json)) {}

Undescribed::~Undescribed() = default;

bool Undescribed::IsStated() const { return true; }

void Undescribed::Prepare(boost::json::value const& json, Change& change) {
    change.Add([this, json](Notification&) { *content = json; });
}

bool Undescribed::PrepareAbsent(Change&) { return false; }

bool Undescribed::IsWritten(Layer layer) const { return layer == Layer::Persisted; }

boost::json::value Undescribed::Write(Layer) const { return *content; }

boost::json::value Undescribed::WriteSchema() const { return boost::json::object(); }

} // namespace zarn::configuration::node
