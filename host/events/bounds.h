#pragma once

#include <cstddef>

namespace zarn::host::events {

/// What one text of events may hold, whoever sends it. The bounds are far above what a program sends that means well,
/// and keep the memory that a text can cost in proportion to its length.
inline constexpr std::size_t MaximumDocumentBytes = std::size_t{16} * 1024 * 1024;

/// Levels of lists and objects within each other; events need four.
inline constexpr std::size_t MaximumDepth = 8;

/// Elements of a list, which for the outermost one are events.
inline constexpr std::size_t MaximumEvents = 10000;

/// Fields of one object.
inline constexpr std::size_t MaximumFields = 32;

/// Tracked objects of one event.
inline constexpr std::size_t MaximumObjects = 1000;

/// Channels, zones and counts of one event, of each.
inline constexpr std::size_t MaximumValues = 64;

/// Bytes of a type, name or class, in UTF-8.
inline constexpr std::size_t MaximumTextBytes = 256;

} // namespace zarn::host::events
