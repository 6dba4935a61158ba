#pragma once

#include <filesystem>

namespace quillet::db {

/// Creates an embedded store database without data: all store tables, their keys, and the
/// configuration rows that a receive expects to find.
/// @throws Error when the file exists already or cannot be created; no half-made file stays.
void createEmptyStore(const std::filesystem::path& file);

} // namespace quillet::db
