#pragma once

namespace zarn::configuration {

/// What reading does with keys that no schema describes.
enum class Unknown {
    /// They are errors.
    Refuse,
    /// They are kept as node::Undescribed until a schema describes them, and are written back until then.
    Keep,
};

} // namespace zarn::configuration
