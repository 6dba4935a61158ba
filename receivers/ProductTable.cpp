#include "receivers/ProductTable.h"

#include "receivers/Titles.h"

#include <array>
#include <optional>

namespace quillet::receivers {

namespace {

constexpr std::string_view StoreSql =
    " SELECT PR_CODE,PR_NAME,KIND_CODE,PR_DATE,PR_PRICE1,PR_PRICE2,PR_PRICE3,PR_COST,PR_CK,"
    " PR_TAX,PR_IVCK,PR_DCGU,PR_SETGU,PR_COSGU,PR_OPTGU,PR_CPRGU,PR_BARCODE FROM PR ";

constexpr double OnSale = 0;
constexpr double Paused = 1;
constexpr double Discontinued = 2;

std::string_view stockFlag(const sync::ServerRow& row) {
    if (row.isNull(10))
        return "0";
    const std::string method = row.text(10);
    return method == "C6X" || method.empty() ? "1" : "0";
}

/// The product statements of one receive: what an end of sale sets is carried from row to row.
class ProductStatements {
public:
    ProductStatements(const sync::SqlTemplate& insert, const ProductUpdate& update)
        : insert_(insert), update_(update) {}

    std::optional<std::string> insert(const sync::ServerRow& row) {
        if (readEndOfSale(row) == Discontinued)
            return std::nullopt;
        return render(insert_, row);
    }

    std::string update(const sync::ServerRow& row) {
        const double end = readEndOfSale(row);
        if (end == OnSale || end == Paused)
            KindCode = row.text(2);
        else if (end == Discontinued)
            KindCode.reset();
        return render(KindCode ? update_.withKind : update_.withoutKind, row);
    }

private:
    double readEndOfSale(const sync::ServerRow& row) {
        const double end = row.number(8);
        if (end == OnSale || end == Paused || end == Discontinued) {
            CkText = end == OnSale ? "0" : "1";
            VisibleText = end == Discontinued ? "1" : "0";
        }
        return end;
    }

    std::string render(const sync::SqlTemplate& statement, const sync::ServerRow& row) const {
        const std::string_view Kind = KindCode ? std::string_view(*KindCode) : std::string_view();
        return statement.render(
            row, std::array<std::string_view, 4>{CkText, VisibleText, stockFlag(row), Kind});
    }

    const sync::SqlTemplate& insert_;
    const ProductUpdate& update_;
    std::string_view CkText = "0";
    std::string_view VisibleText = "0";
    std::optional<std::string> KindCode; ///< of the category part, if there is one
};

} // namespace

sync::SqlTemplate productStatement(std::string_view pattern) {
    return sync::SqlTemplate(pattern, {"CkText", "VisibleText", "VmFlag", "KindCode"});
}

ProductUpdate::ProductUpdate(const std::string& pattern) {
    constexpr std::string_view Place = "{KindClause}";
    const std::size_t place = pattern.find(Place);
    const auto with = [&](std::string_view clause) {
        return productStatement(std::string(pattern).replace(place, Place.size(), clause));
    };
    withKind = with(",KIND_CODE = '{KindCode}' ");
    withoutKind = with("");
}

const sync::SqlTemplate InsertProductWithPoint = productStatement(
    " INSERT INTO PR (PR_CODE,PR_NAME,KIND_CODE,PR_DATE,PR_PRICE1,PR_PRICE2,PR_PRICE3,PR_COST,"
    " PR_CK,PR_TAX,PR_IVCK,PR_DCGU,PR_SETGU,PR_COSGU,PR_OPTGU,PR_CPRGU,PR_VISIBLE,PR_BARCODE,"
    "PR_POINT) VALUES ("
    "'{0}','{1}','{2}','{3}',{#4},{#5},{#6},{#7},"
    "{CkText},{#9},{VmFlag},{#11},{#12},{#13},{#14},{#15},{VisibleText},'{16}','{17}') ");

ProductUpdate updateProductWithPoint(std::string_view pointOpening) {
    return ProductUpdate(" UPDATE PR SET "
                         " PR_NAME = '{1}' {KindClause},PR_DATE = '{3}',"
                         " PR_PRICE1 = {#4},   PR_PRICE2 = {#5},"
                         " PR_PRICE3 = {#6},   PR_COST = {#7},"
                         " PR_CK     = {CkText},"
                         " PR_TAX    = {#9},   PR_IVCK = {VmFlag},"
                         " PR_DCGU   = {#11},  PR_SETGU = {#12},"
                         " PR_COSGU  = {#13},  PR_OPTGU = {#14},"
                         " PR_CPRGU  = {#15},  PR_BARCODE = '{16}', " +
                         std::string(pointOpening) +
                         "{trim 17}'"
                         " WHERE PR_CODE = '{0}' ");
}

bool receiveProducts(sync::Run& run, std::string ServerSql, const sync::SqlTemplate& insert,
                     const ProductUpdate& update) {
    ProductStatements statements(insert, update);
    return sync::receive(
        run, {.title = ProductsTitle,
              .ServerSql = std::move(ServerSql),
              .StoreSql = StoreSql,
              .rowTotal = sync::RowTotalRule::Add,
              .criteria = sync::SqlTemplate("PR_CODE = '{0}' "),
              .insert = [&](const sync::ServerRow& row) { return statements.insert(row); },
              .update = [&](const sync::ServerRow& row) { return statements.update(row); }});
}

} // namespace quillet::receivers
