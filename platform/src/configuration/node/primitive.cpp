#include "configuration/node/key.h"
#include "configuration/node/place.h"
#include "configuration/schema/value_description.h"

#include <zarn/configuration/node/primitive.h>
#include <zarn/object/primitive.h>

#include <boost/json/value.hpp>

#include <utility>

namespace zarn::configuration::node {

void ThrowMissing(char const* typeName, Map const& map, std::string_view path) {
    throw object::BadCast(typeName, JoinPath(map.GetPath(), path));
}

template <class T>
Primitive<T>::Primitive(Place const& place, std::shared_ptr<schema::ValueDescription const> valueDescription)
    : object::Typed<Primitive<T>, Value>(place, std::move(valueDescription)) {}

template <class T>
T Primitive<T>::Get() const {
    return this->GetValuePtr()->template As<object::Primitive<T>>().Get();
}

template <class T>
void Primitive<T>::Set(T value) {
    this->Store(std::make_shared<object::Primitive<T> const>(std::move(value)));
}

template <class T>
void Primitive<T>::Override(T value) {
    this->StoreOverride(std::make_shared<object::Primitive<T> const>(std::move(value)));
}

template class Primitive<bool>;
template class Primitive<std::string>;
template class Primitive<std::uint16_t>;
template class Primitive<std::uint32_t>;
template class Primitive<std::int32_t>;
template class Primitive<std::int64_t>;
template class Primitive<double>;

} // namespace zarn::configuration::node
