#include "receivers/CustomerTable.h"

#include "db/Value.h"
#include "receivers/Titles.h"
#include "sync/LeadingNumber.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

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

/// Whether a text is digits as "YYYY-MM-DD" has them, which is what the head office sends.
bool isPlainDate(std::string_view text) {
    constexpr std::string_view Form = "0000-00-00";
    return std::equal(text.begin(), text.end(), Form.begin(), Form.end(), [](char c, char form) {
        return form == '0' ? c >= '0' && c <= '9' : c == form;
    });
}

/// A date's day as "YYYY-MM-DD"; what is no date (a blank, the zero date) comes back as it is.
std::string dayText(const std::string& text) {
    std::string day = firstTen(text);
    if (isPlainDate(day))
        return day; // whether there is such a day or not
    int year = 0;
    unsigned month = 0;
    unsigned dayOfMonth = 0;
    std::sscanf(day.c_str(), "%4d%*1[-/.]%2u%*1[-/.]%2u", &year, &month, &dayOfMonth);
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                           std::chrono::day(dayOfMonth)};
    if (!date.ok())
        return day;
    return db::Value::date({.year = static_cast<std::int16_t>(year),
                            .month = static_cast<std::uint8_t>(month),
                            .day = static_cast<std::uint8_t>(dayOfMonth)})
        .toText();
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
