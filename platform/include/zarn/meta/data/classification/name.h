#pragma once

#include <zarn/object/typed.h>

#include <string>
#include <utility>

namespace zarn::meta::data::classification {

/// What a tracked object is called, for example by a recogniser or by a person. Never changes, so any thread may read
/// it.
class Name : public object::Typed<Name> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.classification.Name";

    /// text  UTF-8; may be empty
    explicit Name(std::string text) noexcept : value(std::move(text)) {}

    /// The name, UTF-8; may be empty.
    std::string const& GetValue() const noexcept { return value; }

private:
    std::string value;
};

} // namespace zarn::meta::data::classification
