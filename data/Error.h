#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace quillet::data {

/// One entry of a connection's `Errors` collection.
struct ErrorRecord {
    long Number = 0;         ///< 32-bit signed; negative for provider errors
    std::string Description; ///< the driver's text, unchanged
    std::string SqlState;    ///< five characters, empty where the provider has none
};

/// Numbers of the errors that do not come from a provider, as the platform has them.
namespace number {
inline constexpr long Overflow = 6;
inline constexpr long SubscriptOutOfRange = 9;
inline constexpr long TypeMismatch = 13;
inline constexpr long FileAccess = 75;
inline constexpr long InvalidUseOfNull = 94;
inline constexpr long CannotCreateObject = 429;
inline constexpr long RemoteServerUnavailable = 462;
inline constexpr long InvalidArgument = 3001;
inline constexpr long NoCurrentRecord = 3021;
inline constexpr long ItemNotFound = 3265;
inline constexpr long ObjectClosed = 3704;
inline constexpr long ConnectionClosed = 3709;
/// The provider's unspecified error, 0x80004005.
inline constexpr long Unspecified = -2147467259;
/// The provider's syntax or privilege error, 0x80040E14.
inline constexpr long CommandText = -2147217900;
/// A person has ended the operation, 0x80040E4E.
inline constexpr long Canceled = -2147217842;
} // namespace number

/// The one exception of the program: a number and a description, as the platform's own run-time
/// errors have them. An error that a database reported also carries the provider's records.
class Error : public std::runtime_error {
public:
    Error(long number, const std::string& description)
        : std::runtime_error(description), number_(number) {}

    /// A provider error; number and description are those of the first record.
    /// @pre records is not empty.
    explicit Error(std::vector<ErrorRecord> records)
        : std::runtime_error(records.front().Description), number_(records.front().Number),
          records_(std::move(records)) {}

    long Number() const noexcept { return number_; }
    std::string Description() const { return what(); }

    /// Empty unless a database reported the error.
    const std::vector<ErrorRecord>& providerRecords() const noexcept { return records_; }

private:
    long number_;
    std::vector<ErrorRecord> records_;
};

/// The platform's number for an SQLSTATE: 42000, 42S02, 23000, 07001, 07002 and 22001 have their
/// own, everything else is `number::Unspecified`.
long numberOfSqlState(const std::string& sqlState) noexcept;

/// The exception being handled, as an Error: what is none becomes `number::Unspecified`.
/// @pre called in a handler of std::exception.
Error currentError();

/// Error 94.
Error invalidUseOfNull();

/// Error 13.
Error typeMismatch();

/// A provider error with one record.
Error providerError(const std::string& sqlState, const std::string& description);

} // namespace quillet::data
