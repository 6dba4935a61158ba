#pragma once

#include <boost/system/error_code.hpp>

#include <string>

namespace quillet::rds {

/// What went wrong, in words. The system's own texts are in its language and code page, so they
/// are not used.
std::string reasonOf(boost::system::error_code error);

} // namespace quillet::rds
