#pragma once

#include "rds/Call.h"

#include <random>
#include <string>
#include <string_view>

namespace quillet::torture {

/// A head office's reply to a call, HTTP head included, and what a bad line or a bad server makes
/// of it.
class TamperedReply {
public:
    TamperedReply(std::string reply, const rds::Call& call);

    /// Some bytes of it, at least one, but not its whole end.
    std::string cut(std::mt19937& random) const;

    /// With up to eight bytes of the body in a row that are others.
    std::string garbled(std::mt19937& random) const;

    /// The same rows without their last values. @throws data::Error when it has no recordset.
    std::string withoutLastColumn() const;

    /// The same rows behind another number of them.
    /// @throws data::Error when it has no recordset, or the number cannot be that.
    std::string announcing(int more) const;

    static std::string serverError();
    static std::string webPage();

private:
    std::string_view head() const { return std::string_view(reply_).substr(0, body_); }
    data::Recordset rows() const;
    std::string withRows(data::Recordset rows, std::size_t columns, int more) const;

    std::string reply_;
    const rds::Call& call_;
    std::size_t body_; ///< where it begins
};

} // namespace quillet::torture
