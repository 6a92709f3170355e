#pragma once

namespace zarn::authentication {

/// The realm of every digest challenge and of every stored HA1: the maker's domain.
inline constexpr char Realm[] = "zarnsuite.example";

} // namespace zarn::authentication
