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
        std::string manufacturer; ///< who made it
        std::string model;        ///< the model
        std::string firmware;     ///< the version of its software
        std::string hardware;     ///< the version of its hardware
        std::string location;     ///< where it is installed
        std::string name;         ///< its name
    };

    /// An identity of empty texts.
    Config() : Config(Product{}) {}

    /// product  the texts of the identity
    explicit Config(Product product) : product(std::make_shared<Product const>(std::move(product))) {}

    // Declared so that there is no move: a moved-from identity would have no texts to give.
    Config(Config const&) = default;
    Config& operator=(Config const&) = default;
    ~Config() = default;

    /// Who made it.
    std::string_view GetProductManufacturer() const noexcept { return product->manufacturer; }

    /// The model.
    std::string_view GetProductModel() const noexcept { return product->model; }

    /// The version of its software.
    std::string_view GetProductFirmware() const noexcept { return product->firmware; }

    /// The version of its hardware.
    std::string_view GetProductHardware() const noexcept { return product->hardware; }

    /// Where it is installed.
    std::string_view GetProductLocation() const noexcept { return product->location; }

    /// Its name.
    std::string_view GetProductName() const noexcept { return product->name; }

private:
    std::shared_ptr<Product const> product; ///< never null
};

} // namespace zarn::utilities::name
