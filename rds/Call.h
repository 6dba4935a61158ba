#pragma once

#include "data/Error.h"
#include "rds/ByteWriter.h"
#include "rds/Variant.h"
#include "rds/tablegram/TablegramMetadata.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::rds {

/// A call of one method of one server-side object. Arguments are in declaration order; the wire
/// has them last first.
struct Call {
    std::string progId; ///< may contain dots; the method is what follows the last one
    std::string method;
    std::vector<Variant> arguments;
    std::string boundary; ///< 20 characters of the MIME separator
};

/// What came back. An argument that the server did not return is Empty.
struct Reply {
    std::vector<Variant> arguments;
    std::optional<Variant> result; ///< absent where the method has none
};

/// The path of the request line: `/msadc/msadcs.dll/<ProgID>.<Method>`.
std::string callPath(const Call& call);

/// Whether a request's path is one of a call. Letter case does not count.
bool isCallPath(std::string_view path) noexcept;

/// A fresh boundary of 20 characters from the protocol's alphabet (MS-ADTG 2.2.2.5).
std::string newBoundary();

/// The HTTP body of a request, version line and headline included.
std::string encodeCall(const Call& call);

/// Reads a request.
/// @param path of the request line; @param body the HTTP body; @param contentType of the HTTP
///        head, where some clients put the headline.
/// @throws CallError E_INVALIDARG when it is malformed.
Call decodeCall(std::string_view path, std::string_view body, std::string_view contentType = {});

/// Reads the HTTP body of a reply. Nothing is guessed: a body that is cut, has a wrong length or
/// count, or does not end with its closing delimiter is an error. Bytes behind that are ignored.
/// @param arguments how many the call had.
/// @param contentType of the HTTP head, where a server may put the headline.
/// @throws data::Error with the server's own number and description for a failed call, or
///         `number::Unspecified` for a reply that cannot be read.
Reply decodeReply(std::string_view body, std::size_t arguments, std::string_view contentType = {});

/// Writes everything of a reply up to its result: headline and the arguments' parts, in the
/// grouping of the protocol.
/// @param arguments in declaration order; Empty for one that is not returned.
void writeReplyHead(const ByteSink& sink, const std::string& boundary,
                    const std::vector<Variant>& arguments);

/// Writes a result that is not an open recordset as its own part.
void writeReplyResult(const ByteSink& sink, const std::string& boundary, const Variant& result);

/// Writes the result part of a recordset straight from a database cursor, row by row.
void writeReplyResult(const ByteSink& sink, const std::string& boundary, data::Cursor& rows);

/// The same with a description of the columns that says more than the cursor knows.
void writeReplyResult(const ByteSink& sink, const std::string& boundary, data::Cursor& rows,
                      const TablegramMetadata& metadata);

/// Writes the closing delimiter.
void writeReplyEnd(const ByteSink& sink, const std::string& boundary);

/// The body of a whole-call error (MS-ADTG 2.2.2.2): no multipart, one error value.
std::string encodeCallError(const ScodeError& error);

/// A run-time error's number as the HRESULT that callers' run-time systems turn back into it: 3706
/// is 0x800A0E7A (MS-ADTG example 4.2).
std::uint32_t scodeOf(long number) noexcept;

/// The run-time error that a failed call raises: that of the object itself where the call only says
/// that there was one. Its number is never 0.
data::Error failureOf(const ScodeError& error);

/// A call that the server side refuses or fails, with what it sends back.
class CallError : public std::runtime_error {
public:
    explicit CallError(ScodeError error);
    const ScodeError& error() const noexcept { return error_; }

private:
    ScodeError error_;
};

namespace scode {
inline constexpr std::uint32_t InvalidArgument = 0x80070057; ///< also: unknown ProgID
inline constexpr std::uint32_t UnknownMethod = 0x80000402;
inline constexpr std::uint32_t Exception = 0x80020009;
} // namespace scode

} // namespace quillet::rds
