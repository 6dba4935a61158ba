#pragma once

#include <cstddef>
#include <string_view>

namespace quillet::rds::format {

// The fixed texts of a message (MS-ADTG 2.2.2.4 to 2.2.2.7).
inline constexpr std::string_view LineEnd = "\r\n";
inline constexpr std::string_view ClientVersion = "ADCClientVersion:";
inline constexpr std::string_view ContentType = "Content-Type: ";
inline constexpr std::string_view ContentLength = "Content-Length: ";
inline constexpr std::string_view Multipart = "multipart/mixed; boundary=";
inline constexpr std::string_view ArgumentCount = "; num-args=";
inline constexpr std::string_view Values = "application/x-varg";
inline constexpr std::string_view Delimiter = "--";

/// Servers take less than 1024 arguments.
inline constexpr std::size_t MaxArguments = 1023;

/// The Content-Length of a whole-call error: type code and SCODE count, what follows does not.
inline constexpr std::size_t CountedErrorBytes = 6;

} // namespace quillet::rds::format
