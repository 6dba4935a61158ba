#pragma once

#include "db/VelkDBPro.h"

#include <memory>

/// Holds the program's one store connection, from start-up to the end of the process.
namespace quillet::db::DB_Control {

inline std::unique_ptr<VelkDBPro> StoreConnection;

} // namespace quillet::db::DB_Control
