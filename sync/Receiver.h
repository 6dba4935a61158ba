#pragma once

#include "sync/Run.h"
#include "sync/ServerRow.h"
#include "sync/SqlTemplate.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::sync {

/// What a receiver does with the run's RowTotal when rows came. Receivers deliberately differ; the
/// driver replaces the total by the statements' before anyone sees it.
enum class RowTotalRule { Set, Add };

/// A receiver that turns each server row into one INSERT or UPDATE, by looking its key up in a
/// snapshot of the store table. What differs between receivers is said here; what they share is
/// done by receive().
///
/// The snapshot does not see statements that the run has collected: a key that comes twice and is
/// new in the store is inserted twice.
struct Upsert {
    using Statement = std::function<std::string(const ServerRow&)>;
    using OptionalStatement = std::function<std::optional<std::string>(const ServerRow&)>;

    std::string_view title{};    ///< names the receiver in the download log
    std::string ServerSql{};     ///< the server query
    std::string_view StoreSql{}; ///< the look-up query: the key column of the whole store table
    RowTotalRule rowTotal = RowTotalRule::Add;

    /// The look-up's criteria. Receivers differ in a leading blank.
    SqlTemplate criteria{};

    /// For a key that is not in the store; without a value the row is passed over.
    OptionalStatement insert{};
    /// For a store table without rows, where it differs from insert.
    OptionalStatement firstFill{};
    /// For a key that is in the store.
    Statement update{};

    /// Work between the arrival of rows and the look-up.
    std::function<void()> beforeLookup{};

    /// One receiver's handled-row counter deliberately never moves.
    bool countsRows = true;
};

/// Queries the server and appends the statements to the run's array.
/// @return the receive result flag: true also when the server has no rows. After a run-time error
///         false; the error is in the download log, with the statement at the handled-row
///         counter's index.
[[nodiscard]] bool receive(Run& run, const Upsert& upsert);

/// Under which the download log has failures of the store that are no receiver's.
inline constexpr const char* StoreTitle = "저장소 확인";

/// The steps of a receiver under the failure path that all of them share.
/// @param steps gets the handled-row counter, which decides the statement that a failure logs.
/// @return as receive(). Steps that a person has ended have not failed: nothing is logged.
[[nodiscard]] bool guardReceiver(Run& run, std::string_view title,
                                 const std::function<void(std::size_t& handledRows)>& steps);

} // namespace quillet::sync
