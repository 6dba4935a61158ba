#pragma once

#include "data/Recordset.h"
#include "rds/ByteReader.h"
#include "rds/tablegram/CodePage.h"

namespace quillet::rds {

/// Reads a tablegram (MS-ADTG 2.2.3.14) as an open recordset that stands on its first row, if it
/// has one. Pending changes are taken as made: changed rows have their new values, deleted ones
/// are gone, inserted ones are there. Columns that the server added for itself are left out.
/// @param in stands behind the tablegram afterwards.
/// @param codePage of the ANSI columns.
/// @throws data::Error `number::Unspecified` when it is cut short, contradicts itself or is of a
///         kind that is not supported (hierarchical, big-endian, another version).
data::Recordset readTablegram(ByteReader& in, unsigned codePage = DefaultCodePage);

} // namespace quillet::rds
