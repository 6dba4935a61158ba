#pragma once

#include "sync/Receiver.h"

#include <string>
#include <string_view>

namespace quillet::receivers {

/// What the products receivers share: the way of a server row into the store table `PR`.
///
///     field  store column          field  store column        field  store column
///     0      PR_CODE               6      PR_PRICE3           12     PR_SETGU
///     1      PR_NAME               7      PR_COST             13     PR_COSGU
///     2      KIND_CODE             8      PR_CK, PR_VISIBLE   14     PR_OPTGU
///     3      PR_DATE               9      PR_TAX              15     PR_CPRGU
///     4      PR_PRICE1             10     PR_IVCK             16     PR_BARCODE
///     5      PR_PRICE2             11     PR_DCGU             17     PR_POINT (not everywhere)
///
/// Field 8 is the end of sale: 0 on sale, 1 paused, 2 discontinued. A discontinued product that the
/// store does not have is not created; one that it has keeps its category. Any other value
/// deliberately takes the flags, and on update the category, of the row before it.
///
/// Field 10 is the stock method: "C6X" and empty text count stock, Null does not.

/// A statement on `PR` with the places that are computed from the row:
///
///     {CkText}  {VisibleText}  {VmFlag}
sync::SqlTemplate productStatement(std::string_view pattern);

/// An UPDATE of `PR`, with the same places and one more:
///
///     {KindClause}  the category part, comma included, or nothing
struct ProductUpdate {
    explicit ProductUpdate(const std::string& pattern);

    sync::SqlTemplate withKind; ///< its last computed text is the category
    sync::SqlTemplate withoutKind;
};

/// The statements of the receivers that receive field 17: stored as received when the product is
/// new, without outer blanks when it is not. The UPDATE deliberately leaves the visibility alone.
extern const sync::SqlTemplate InsertProductWithPoint;
/// @param pointOpening " PR_POINT = '" with the blanks that the receiver has there.
ProductUpdate updateProductWithPoint(std::string_view pointOpening);

/// Receives products; the three receivers differ in these arguments.
/// @return the receive result flag.
[[nodiscard]] bool receiveProducts(sync::Run& run, std::string ServerSql,
                                   const sync::SqlTemplate& insert, const ProductUpdate& update);

} // namespace quillet::receivers
