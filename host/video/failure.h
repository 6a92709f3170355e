#pragma once

#include <string>

namespace zarn::host::video {

/// Why a source or a pipeline is of no use.
struct Failure {
    /// For everybody: names no address, path, user or password.
    std::string summary;

    /// For the log: what GStreamer says, which may name addresses and paths. Empty when the summary says it all.
    std::string detail = {};

    /// What the log is told.
    std::string const& GetText() const { return detail.empty() ? summary : detail; }
};

} // namespace zarn::host::video
