#pragma once

#include "sync/Receiver.h"

#include <string>
#include <string_view>

namespace quillet::receivers {

/// What members and trade partners share: the store table `CT`, of which column n is filled from
/// field n of the server row. A code that is in the store as the other kind becomes this kind.
///
///     0 CT_CODE    8 CT_CPHONE  16 CT_RPOINT  24 CT_GU      32 CT_DAY
///     1 CT_LVL     9 CT_EMAIL   17 CT_UPOINT  25 CT_DCHK    33 CT_ABO
///     2 CT_NAME   10 CT_EMCHK   18 CT_VISITN  26 CT_FDATE   34 CT_HOBBY
///     3 CT_SEX    11 CT_ZIP     19 CT_SALE    27 CT_EDATE   35 CT_INCODE
///     4 CT_NO     12 CT_ADDR1   20 CT_MISU    28 CT_ZIPD    36 CT_INNAME
///     5 CT_BIRTH  13 CT_ADDR2   21 CT_VISITD  29 CT_ADDRD1  37 CT_GUBUN
///     6 CT_BIRCHK 14 CT_CK      22 CT_MEMO    30 CT_ADDRD2  38 CT_ST
///     7 CT_PHONE  15 CT_TPOINT  23 CT_DATE    31 CT_JOB     39 CT_KD

/// A statement on `CT` with the places that are computed from the row:
///
///     {CK}  whether a member is still active: 1 when field 14 is 0, blank or Null, else 0
///     {VD}  the day of the last visit, "YYYY-MM-DD", or one blank
sync::SqlTemplate customerStatement(const std::string& pattern);

/// " INSERT INTO CT (" and the names of all columns, up to " VALUES (".
extern const std::string_view InsertCustomer;

/// The end of an UPDATE that both kinds have alike: from ",CT_SALE" on.
extern const std::string_view UpdateCustomerTail;

struct CustomerStatements {
    const sync::SqlTemplate& insert;
    const sync::SqlTemplate& firstFill;
    const sync::SqlTemplate& update;
};

/// @param countsRows whether the handled-row counter moves.
/// @return the receive result flag.
[[nodiscard]] bool receiveCustomers(sync::Run& run, std::string ServerSql,
                                    const CustomerStatements& statements, bool countsRows);

} // namespace quillet::receivers
