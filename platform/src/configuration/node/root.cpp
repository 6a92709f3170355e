#include "configuration/node/children.h"
#include "configuration/node/place.h"

#include <zarn/configuration/node/root.h>

#include <boost/json/value.hpp>

#include <memory>
#include <mutex>

namespace zarn::configuration::node {

Root::Root() : Typed(Place{std::make_shared<std::recursive_mutex>(), {}, {}}) {}

Root::~Root() = default;

} // namespace zarn::configuration::node
