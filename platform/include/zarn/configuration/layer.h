#pragma once

namespace zarn::configuration {

/// Which of its values a node is asked for.
enum class Layer {
    /// What belongs into the file: overrides are left out, and so are read-only values and optional members that the
    /// file
    /// did not state and that hold their default. Write-only values are in it.
    Persisted,
    /// What holds now, overrides included. Write-only values are left out, and so are optional members that nobody
    /// stated.
    Effective,
    /// What holds when nothing is stated. Write-only values are left out; collections are empty.
    Default,
};

} // namespace zarn::configuration
