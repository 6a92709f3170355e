#include <zarn/meta/data/container.h>

#include <stdexcept>
#include <utility>

namespace zarn::meta::data {

void Container::Add(std::shared_ptr<object::Object const> added) {
    if (!added) throw std::invalid_argument("Container::Add: the object is null");
    objects.push_back(std::move(added));
}

} // namespace zarn::meta::data
