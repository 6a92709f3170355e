#pragma once

#include <zarn/object/typed.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace zarn::meta::data::classification {

/// The class that a classifier gave to a tracked object, and how sure it was. Never changes, so any thread may read it.
class Confidence : public object::Typed<Confidence> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.classification.Confidence";

    /// className   such as "person"; empty when the classifier found none
    /// confidence  from 0 to 1
    /// Throws std::invalid_argument when the confidence is not in that range.
    explicit Confidence(std::string className, double confidence = 1)
        : className(std::move(className)), value(confidence) {
        if (confidence >= 0 && confidence <= 1) return; // false for NaN
        throw std::invalid_argument("Confidence: " + std::to_string(confidence) + " is not from 0 to 1");
    }

    /// The class, such as "person"; may be empty.
    std::string const& GetClass() const noexcept { return className; }

    /// How sure the classifier was, from 0 to 1.
    double GetValue() const noexcept { return value; }

private:
    std::string className;
    double value;
};

} // namespace zarn::meta::data::classification
