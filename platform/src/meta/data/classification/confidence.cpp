#include <zarn/meta/data/classification/confidence.h>

#include <stdexcept>
#include <utility>

namespace zarn::meta::data::classification {

Confidence::Confidence(std::string classifiedAs, double confidence)
    : className(std::move(classifiedAs)), value(confidence) {
    if (!(value >= 0 && value <= 1)) { // true for NaN
        throw std::invalid_argument("Confidence: " + std::to_string(value) + " is not from 0 to 1");
    }
}

} // namespace zarn::meta::data::classification
