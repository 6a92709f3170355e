#pragma once

#include "configuration/schema/description.h"

#include <zarn/object/object.h>

#include <memory>
#include <string>
#include <string_view>

namespace zarn::configuration::schema {

/// Describes a value: its type, default and rule. The values given to it must be of its type.
class ValueDescription : public Description {
public:
    using Value = std::shared_ptr<object::Object const>;

    virtual Value GetDefault() const = 0;

    /// The value that a text or a JSON value stands for. Throws Error for the path when it is of another type or is
    /// refused.
    virtual Value FromText(std::string const& path, std::string_view valueText) const = 0;
    virtual Value FromJson(std::string const& path, boost::json::value const& json) const = 0;

    /// Throws Error for the path when the rule refuses the value.
    virtual void Check(std::string const& path, object::Object const& value) const = 0;

    virtual boost::json::value WriteJson(object::Object const& value) const = 0;
    virtual std::string WriteText(object::Object const& value) const = 0;
    virtual bool IsEqual(object::Object const& left, object::Object const& right) const = 0;

protected:
    using Description::Description;
};

} // namespace zarn::configuration::schema
