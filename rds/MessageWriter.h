#pragma once

#include "rds/ByteWriter.h"
#include "rds/Variant.h"

#include <string_view>
#include <vector>

namespace quillet::rds {

/// Appends the line that names boundary and number of arguments.
/// @throws data::Error 3001 for more arguments than a message can have.
void writeHeadline(ByteWriter& out, std::string_view boundary, std::size_t arguments);

/// Appends the arguments, last one first: neighbours that are groupable share a part that tells
/// its length, every other one has a part of its own that does not (MS-ADTG 2.2.2.6).
/// @param arguments in declaration order.
void writeArguments(ByteWriter& out, std::string_view boundary,
                    const std::vector<Variant>& arguments);

/// Appends the head of a part of unknown length.
void writePartHead(ByteWriter& out, std::string_view boundary);

/// Appends what ends a message.
void writeClosingDelimiter(ByteWriter& out, std::string_view boundary);

} // namespace quillet::rds
