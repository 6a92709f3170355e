#include <zarn/meta/data/sample_meta.h>

namespace zarn::meta::data {

Meta GetSampleMeta() {
    using namespace std::chrono;
    using classification::Confidence;
    TrackedObject const person{.number = 12,
                               .boundingBox = {{0.125, 0.25}, {0.25, 0.75}},
                               .centerOfGravity = {0.1875, 0.46875},
                               .classes = {Confidence("person", 0.875)},
                               .color = {}};
    TrackedObject const vehicle{.number = 13,
                                .boundingBox = {{0.5, 0.375}, {0.875, 0.625}},
                                .centerOfGravity = {0.6875, 0.53125},
                                .classes = {Confidence("vehicle", 0.75), Confidence("bicycle", 0.125)},
                                .color = Color{.red = 192, .green = 32, .blue = 16}};
    return {sys_days(year(2026) / 1 / 31) + 12h, {person, vehicle}};
}

} // namespace zarn::meta::data
