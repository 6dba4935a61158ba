#pragma once

#include "rds/Variant.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::rds {

/// A multipart message as it stands on the wire.
struct Message {
    std::string boundary;
    std::size_t argumentCount = 0; ///< what the headline claims
    std::vector<Variant> values;   ///< in the order of the wire, a result last
};

/// Whether a body is a whole-call error instead of a message (MS-ADTG 2.2.2.2).
bool isCallError(std::string_view body) noexcept;

/// Reads the value of a whole-call error.
/// @throws data::Error `number::Unspecified` when it is none.
ScodeError readCallError(std::string_view body);

/// Looks at the first bytes of a body, which may still be coming.
/// @param contentType of the HTTP head, "" where it has none.
/// @return whether they are those of a message or a whole-call error; false: too few to tell.
/// @throws data::Error `number::Unspecified` when they are something else, which it describes.
bool startsAsMessage(std::string_view start, std::string_view contentType);

/// Reads a message, with or without a version line in front. Parts end where their values end,
/// never at something that looks like a delimiter; bytes behind the closing one are ignored.
/// @param contentType of the HTTP head: the headline of a body that starts with its first part.
/// @throws data::Error `number::Unspecified` when the body is cut short or contradicts itself.
Message readMessage(std::string_view body, std::string_view contentType = {});

} // namespace quillet::rds
