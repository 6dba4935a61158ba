#pragma once

#include "rds/http/HttpServer.h"

#include <string>
#include <string_view>

namespace quillet::rds {

/// The head of a reply, up to and including the blank line.
/// @param moreHeaders lines with their ends.
std::string replyHead(unsigned status, const std::string& moreHeaders);

/// A whole reply with one line of text.
std::string errorReply(unsigned status, std::string_view text);

/// The head of a reply whose body is known, see HttpReply::page().
/// @throws data::Error 3001 for a header that would not stay in its line.
std::string pageHead(unsigned status, std::string_view contentType, std::size_t bodySize,
                     const HttpReply::Headers& more);

} // namespace quillet::rds
