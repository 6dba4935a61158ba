#pragma once

// The ODBC interface for the sources of this folder's ODBC engine; no other header includes it.
// clang-format off: windows.h must come first, the ODBC headers are written in its types.
#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
// clang-format on

// Texts go to the driver manager as UTF-16, on every platform.
static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
