#include <zarn/utilities/name/config.h>

#include <utility>

namespace zarn::utilities::name {

Config::Config() : Config(Product{}) {}

Config::Config(Product product) : product(std::make_shared<Product const>(std::move(product))) {}

} // namespace zarn::utilities::name
