#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::utilities::name {

/// The product identity. Immutable; a copy is cheap and shares the texts. Thread: any.
class Config {
public:
    /// The texts of the identity; each may be empty.
    struct Product {
        std::string manufacturer;
        std::string model;
        std::string firmware;
        std::string hardware;
        std::string location;
        std::string name;
    };

    /// An identity of empty texts.
    Config() : Config(Product{}) {}

    explicit Config(Product product) : product(std::make_shared<Product const>(std::move(product))) {}

    // Declared so that there is no move: a moved-from identity would have no texts to give.
    Config(Config const&) = default;
    Config& operator=(Config const&) = default;
    ~Config() = default;

    std::string_view GetProductManufacturer() const noexcept { return product->manufacturer; }

    std::string_view GetProductModel() const noexcept { return product->model; }

    std::string_view GetProductFirmware() const noexcept { return product->firmware; }

    std::string_view GetProductHardware() const noexcept { return product->hardware; }

    std::string_view GetProductLocation() const noexcept { return product->location; }

    std::string_view GetProductName() const noexcept { return product->name; }

private:
    std::shared_ptr<Product const> product; ///< never null
};

} // namespace zarn::utilities::name
