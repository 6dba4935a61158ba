#include "receivers/CustomerTable.h"

#include "data/Value.h"
#include "receivers/Titles.h"
#include "sync/LeadingNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <optional>

namespace quillet::receivers {

namespace {

constexpr std::string_view StoreSql =
    " SELECT CT_CODE,CT_LVL,CT_NAME,CT_SEX,CT_NO,CT_BIRTH,CT_BIRCHK,CT_PHONE,CT_CPHONE,CT_EMAIL,"
    "CT_EMCHK,"
    " CT_ZIP,CT_ADDR1,CT_ADDR2,CT_CK,CT_TPOINT,CT_RPOINT,CT_UPOINT,CT_VISITN,CT_SALE,CT_MISU,"
    "CT_VISITD,"
    " CT_MEMO,CT_DATE,CT_GU,CT_DCHK,CT_FDATE,CT_EDATE,CT_ZIPD,CT_ADDRD1,CT_ADDRD2,"
    " CT_JOB,CT_DAY,CT_ABO,CT_HOBBY,CT_INCODE,CT_INNAME,CT_GUBUN,CT_ST,CT_KD FROM CT ";

/// The first 10 characters of a UTF-8 text.
std::string firstTen(const std::string& text) {
    std::size_t end = 0;
    for (int characters = 0; end < text.size(); ++end) {
        const bool continues = (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U;
        if (!continues && ++characters > 10)
            break;
    }
    return text.substr(0, end);
}

/// Takes a number of so many digits off a text.
/// @return whether it begins with one.
bool takeNumber(std::string_view& text, std::size_t least, std::size_t most, unsigned& number) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits < least || digits > most)
        return false;
    std::from_chars(text.data(), text.data() + digits, number);
    text.remove_prefix(digits);
    return true;
}

bool takeSeparator(std::string_view& text) {
    if (text.find_first_of("-/.") != 0)
        return false;
    text.remove_prefix(1);
    return true;
}

/// The day that a text of year, month and day begins with; a time, or a piece of one, may follow.
/// Any other order or length could as well be another day.
std::optional<data::DateTime> dayOf(std::string_view text) {
    unsigned year = 0;
    unsigned month = 0;
    unsigned day = 0;
    const bool whole = takeNumber(text, 4, 4, year) && takeSeparator(text) &&
                       takeNumber(text, 1, 2, month) && takeSeparator(text) &&
                       takeNumber(text, 1, 2, day);
    const bool timeFollows =
        text.starts_with(' ') && text.find_first_not_of(" 0123456789:") == std::string_view::npos;
    if (!whole || !(text.empty() || timeFollows))
        return std::nullopt;
    if (!std::chrono::year_month_day(std::chrono::year(static_cast<int>(year)),
                                     std::chrono::month(month), std::chrono::day(day))
             .ok())
        return std::nullopt;
    return data::DateTime{.year = static_cast<std::int16_t>(year),
                          .month = static_cast<std::uint8_t>(month),
                          .day = static_cast<std::uint8_t>(day)};
}

/// A date's day as "YYYY-MM-DD"; what is no date (a blank, the zero date) comes back as it is.
std::string dayText(const std::string& text) {
    std::string day = firstTen(text);
    const auto date = dayOf(day);
    return date ? data::Value::date(*date).toText() : day;
}

std::string render(const sync::SqlTemplate& statement, const sync::ServerRow& row) {
    const std::string_view CK = sync::leadingNumber(row.text(14)) == 0 ? "1" : "0";
    const std::string VD = dayText(row.text(21) + " ");
    return statement.render(row, std::array<std::string_view, 2>{CK, VD});
}

} // namespace

const std::string_view InsertCustomer =
    " INSERT INTO CT (CT_CODE,CT_LVL,CT_NAME,CT_SEX,CT_NO,CT_BIRTH,CT_BIRCHK,CT_PHONE,CT_CPHONE,"
    "CT_EMAIL,"
    " CT_EMCHK,CT_ZIP,CT_ADDR1,CT_ADDR2,CT_CK,CT_TPOINT,CT_RPOINT,CT_UPOINT,CT_VISITN,CT_SALE,"
    "CT_MISU,"
    " CT_VISITD,CT_MEMO,CT_DATE,CT_GU,CT_DCHK,CT_FDATE,CT_EDATE,CT_ZIPD,CT_ADDRD1,CT_ADDRD2,"
    " CT_JOB,CT_DAY,CT_ABO,CT_HOBBY,CT_INCODE,CT_INNAME,CT_GUBUN,CT_ST,CT_KD) VALUES (";

const std::string_view UpdateCustomerTail =
    ",CT_SALE = {#19},"
    " CT_MISU = {#20},CT_VISITD = '{VD}',CT_MEMO = '{22}',"
    " CT_DATE = '{23}',CT_GU = '{24}',CT_DCHK = {#25},"
    " CT_FDATE = '{26}',CT_EDATE = '{27}',CT_ZIPD = '{28}',"
    " CT_ADDRD1 = '{29}',CT_ADDRD2 = '{30}',CT_JOB = '{31}',"
    " CT_DAY = '{32}',CT_ABO = '{33}',CT_HOBBY = '{34}',"
    " CT_INCODE = '{35}',CT_INNAME = '{36}',CT_GUBUN = {#37},"
    " CT_ST = '{38}',CT_KD = '{39}' WHERE CT_CODE = '{0}' ";

sync::SqlTemplate customerStatement(const std::string& pattern) {
    return sync::SqlTemplate(pattern, {"CK", "VD"});
}

bool receiveCustomers(sync::Run& run, std::string ServerSql, const CustomerStatements& statements,
                      bool countsRows) {
    const auto rendering = [](const sync::SqlTemplate& statement) {
        return [&statement](const sync::ServerRow& row) { return render(statement, row); };
    };
    return sync::receive(run, {.title = MembersTitle,
                               .ServerSql = std::move(ServerSql),
                               .StoreSql = StoreSql,
                               .rowTotal = sync::RowTotalRule::Set,
                               .criteria = sync::SqlTemplate("CT_CODE = '{0}' "),
                               .insert = rendering(statements.insert),
                               .firstFill = rendering(statements.firstFill),
                               .update = rendering(statements.update),
                               .countsRows = countsRows});
}

} // namespace quillet::receivers
