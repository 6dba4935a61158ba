#include "receivers/ReceiveAvailability.h"
#include "receivers/ReceiveProductsBase.h"
#include "receivers/ReceiveProductsPriceOption.h"
#include "receivers/ReceiveProductsStorePrice.h"
#include "tests/receivers/ReceiverFixture.h"

namespace quillet::receivers {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ProductsTest : public tests::ReceiverFixture {
protected:
    void SetUp() override {
        ReceiverFixture::SetUp();
        if (IsSkipped())
            return;
        sql("INSERT INTO KIND (KD_ID,KD_NAME,KD_CKSD,KD_CKGU,KD_LVL) VALUES "
            "('101000000000000','찌개','Y','A420',1),('102000000000000','숨김','N','A420',1),"
            "('103010000000000','둘째','Y','A420',2),('201000000000000','음료','Y','A402',1),"
            "('999000000000000','시스템','Y','A420',1)");
        // A known product, with whatever only a new one gets.
        store("INSERT INTO PR (PR_CODE,KIND_CODE,PR_VISIBLE,PR_POINT) VALUES ('K1','0777',7,'')");
    }

    /// A product with other values than 0 where they matter.
    void product(const std::string& code, const std::string& end = "0",
                 const std::string& category = "101000000000000",
                 const std::string& method = "'C6X'", const std::string& point = "' 5 '") {
        sql("INSERT INTO PR (PR_CODE,PR_NAME,KD_ID,PR_DATE,PR_OP1,PR_OP2,PR_OP3,PR_OP0,PR_END,"
            "PR_TAX,PR_VM,PR_DCGU,PR_SETGU,PR_OPTGU,PR_BCODE,PR_POINTGU) VALUES ('" +
            code + "','찌개 " + code + "','" + category +
            "','2026-05-01 10:00:00',9000,8500,0.5,3150.50,'" + end + "',1," + method +
            ",2,3,5,'880'," + point + ")");
    }

    void price(const std::string& code, const std::string& amount, const std::string& date,
               const std::string& partner = "1000000000000000", const std::string& store = "1000") {
        sql("INSERT INTO CTP VALUES ('" + store + "','" + partner + "','" + code + "'," + amount +
            ",'" + date + "')");
    }

    std::vector<std::string> flags() {
        return rows("SELECT PR_CODE,KIND_CODE,PR_PRICE1,PR_CK,PR_VISIBLE,PR_IVCK,PR_POINT FROM PR "
                    "ORDER BY PR_CODE");
    }
};

constexpr const char* Columns =
    " INSERT INTO PR (PR_CODE,PR_NAME,KIND_CODE,PR_DATE,PR_PRICE1,PR_PRICE2,PR_PRICE3,PR_COST,"
    " PR_CK,PR_TAX,PR_IVCK,PR_DCGU,PR_SETGU,PR_COSGU,PR_OPTGU,PR_CPRGU,PR_VISIBLE,PR_BARCODE";

TEST_F(ProductsTest, BaseStatementsAreExact) {
    product("K1");
    product("N1");
    EXPECT_THAT(
        statements(ReceiveProductsBase),
        ElementsAre(
            " UPDATE PR SET  PR_NAME = '찌개 K1' ,KIND_CODE = '0101' ,PR_DATE = '2026-05-01 "
            "10:00:00', PR_PRICE1 = 9000,   PR_PRICE2 = 8500, PR_PRICE3 = 0.5,   PR_COST = "
            "3150.5, PR_CK     = 0, PR_TAX    = 1,   PR_IVCK = 1, PR_DCGU   = 2,  PR_SETGU "
            "= 3, PR_COSGU  = 0,  PR_OPTGU = 5, PR_CPRGU  = 0,  PR_BARCODE = '880',  "
            "PR_POINT = '5' WHERE PR_CODE = 'K1' ",
            std::string(Columns) +
                ",PR_POINT) VALUES ('N1','찌개 N1','0101','2026-05-01 10:00:00',9000,8500,"
                "0.5,3150.5,0,1,1,2,3,0,5,0,0,'880',' 5 ') "));
    EXPECT_EQ(run_.RowTotal, 2);
}

TEST_F(ProductsTest, BaseFollowsTheEndOfSale) {
    store("INSERT INTO PR (PR_CODE,KIND_CODE,PR_VISIBLE) VALUES ('K2','0777',7)");
    // The half of A402 comes first, with the products whose category is gone.
    product("N2", "3", "201000000000000", "'C7X'"); // unknown, and nothing to carry over yet
    product("N4", "0", "303000000000000", "''");
    product("K1", "3"); // a new product before it leaves no category to carry over
    product("K2", "2"); // keeps its category
    product("N0", "3"); // takes the flags of K2, the category is its own
    product("N1", "1", "101000000000000", "NULL", "NULL");
    product("N3", "2");                    // discontinued and new: not created
    product("N5", "0", "102000000000000"); // not received: hidden category,
    product("N6", "0", "103010000000000"); // second level,
    product("N7", "0", "000000000000000"); // placeholder,
    product("N8", "0", "999000000000000"); // the system's own
    receive(ReceiveProductsBase);
    EXPECT_THAT(flags(), ElementsAre("K1|0777|9000|0|7|1|5", "K2|0777|9000|1|7|1|5",
                                     "N0|0101|9000|1|1|1| 5 ", "N1|0101|9000|1|0|0|0",
                                     "N2|0201|9000|0|0|0| 5 ", "N4|0303|9000|0|0|1| 5 "));

    // An unknown value on a known product takes the category of the row before it.
    sql("UPDATE PR SET PR_END = '0' WHERE PR_CODE = 'K1'");
    sql("UPDATE PR SET PR_END = '4', KD_ID = '201000000000000' WHERE PR_CODE = 'K2'");
    sql("UPDATE KIND SET KD_CKGU = 'A402' WHERE KD_ID = '101000000000000'");
    receive(ReceiveProductsBase);
    EXPECT_THAT(rows("SELECT KIND_CODE,PR_CK FROM PR WHERE PR_CODE = 'K2'"), ElementsAre("0101|0"));
}

TEST_F(ProductsTest, BaseFillsAnEmptyStoreAndThenAsksForLaterChangesOnly) {
    store("DELETE FROM PR");
    product("A1", "1");
    product("A2", "3");
    product("A3", "2");
    receive(ReceiveProductsBase);
    EXPECT_THAT(flags(), ElementsAre("A1|0101|9000|1|0|1| 5 ", "A2|0101|9000|1|0|1| 5 "));

    stamp(sync::Group::Menu) = "2026-05-01 10:00:00"; // exactly: not again
    EXPECT_THAT(statements(ReceiveProductsBase), IsEmpty());
    EXPECT_EQ(run_.RowTotal, 3) << "no rows leave the total alone";
    sql("UPDATE PR SET PR_DATE = '2026-05-01 10:00:01' WHERE PR_CODE = 'A2'");
    EXPECT_EQ(statements(ReceiveProductsBase).size(), 1U);

    sql("ALTER TABLE PR MODIFY PR_OP1 DOUBLE NULL");
    sql("UPDATE PR SET PR_OP1 = NULL, PR_DATE = '2026-05-01 10:00:01' WHERE PR_CODE = 'A3'");
    EXPECT_THAT(statements(ReceiveProductsBase), testing::SizeIs(1)) << "not created, so not read";
    sql("UPDATE PR SET PR_END = '0' WHERE PR_CODE = 'A3'");
    EXPECT_THAT(
        failure(ReceiveProductsBase),
        testing::AllOf(StartsWith("품목 자료수신\r\n UPDATE PR SET "), HasSubstr("\r\n94\r\n")))
        << "logged with the statement at the row counter";
}

TEST_F(ProductsTest, PriceOptionChoosesThePrice) {
    sql("INSERT INTO BAS (BAS_CODE,BAS_OP1,BAS_OP2) VALUES ('ZO01','Y','1')");
    sql("UPDATE KIND SET KD_CKSD = NULL WHERE KD_ID = '201000000000000'");
    product("K1", "2");
    product("N1");
    product("N2");
    product("N3");
    product("N9", "0", "201000000000000"); // a category without a mark does not count here
    price("K1", "9900", "2026-06-01 09:00:00");
    price("N1", "0", "2026-06-01 09:00:00");                        // counts as no price
    price("N2", "9700", "2026-06-01 09:00:00", "2000000000000000"); // not the counter's
    price("N3", "9800", "2026-06-01 09:00:00", "1000000000000000", "1001");
    const auto prices = [&] {
        receive(ReceiveProductsPriceOption);
        return rows("SELECT PR_CODE,PR_PRICE1,PR_DATE FROM PR WHERE PR_DATE <> '' ORDER BY "
                    "PR_CODE");
    };

    run_.priceOptionMode = "2";
    sql("UPDATE BAS SET BAS_OP2 = '2'");
    EXPECT_THAT(prices(), ElementsAre("K1|9900|2026-06-01 09:00:00", "N1|0|2026-05-01 10:00:00"));
    EXPECT_THAT(flags()[0], "K1|0777|9900|1|7|1|5") << "discontinued: category and visibility stay";

    run_.priceOptionMode = "1";
    sql("UPDATE BAS SET BAS_OP2 = '1'");
    EXPECT_THAT(prices(),
                ElementsAre("K1|9900|2026-06-01 09:00:00", "N1|9000|2026-05-01 10:00:00",
                            "N2|9000|2026-05-01 10:00:00", "N3|9000|2026-05-01 10:00:00"));
    const std::vector<std::string> updates = statements(ReceiveProductsPriceOption);
    ASSERT_EQ(updates.size(), 4U);
    EXPECT_THAT(updates[0], HasSubstr(", PR_CK     = 1, PR_TAX    = 1,"));
    EXPECT_THAT(updates[0],
                testing::EndsWith(",  PR_BARCODE = '880',  PR_POINT =  '5' WHERE PR_CODE = 'K1' "));

    // What is stamped exactly as the last receive comes again.
    stamp(sync::Group::Menu) = "2026-06-01 09:00:00";
    EXPECT_EQ(statements(ReceiveProductsPriceOption).size(), 1U);
    settings_.SaveSetting("HALDREN", "Settings", "가맹점", "1001");
    EXPECT_THAT(statements(ReceiveProductsPriceOption), ElementsAre(HasSubstr("'N3'")));
}

TEST_F(ProductsTest, StorePriceTakesTheStoresOwnPrices) {
    for (const char* code : {"K1", "N1", "N2", "N3"})
        product(code);
    product("N4", "0", "201000000000000", "''", "NULL");
    sql("INSERT INTO PRGU (PR_CODE) VALUES ('K1'),('N1'),('N3'),('N4')");
    price("K1", "9900", "2026-06-01 09:00:00");
    price("N1", "9800", "2026-06-01 09:00:00");
    price("N2", "9700", "2026-06-01 09:00:00"); // no PRGU row: not received
    price("N3", "9600", "2026-05-31 09:00:00"); // not changed since
    price("N4", "2500", "2026-06-01 09:00:00");
    stamp(sync::Group::Menu) = "2026-05-31 09:00:00";
    EXPECT_THAT(
        statements(ReceiveProductsStorePrice),
        ElementsAre(
            std::string(Columns) +
                ") VALUES ('N4','찌개 N4','0201','2026-05-01 10:00:00',2500,8500,0.5,3150.5,0,1,1,2,"
                "3,0,5,0,0,'880') ",
            " UPDATE PR SET  PR_NAME = '찌개 K1' ,KIND_CODE = '0101' ,PR_DATE = '2026-05-01 "
            "10:00:00', PR_PRICE1 = 9900,   PR_PRICE2 = 8500, PR_PRICE3 = 0.5,   PR_COST = 3150.5, "
            "PR_CK     = 0,      PR_VISIBLE = 0, PR_TAX    = 1,   PR_IVCK = 1, PR_DCGU   = 2,  "
            "PR_SETGU = 3, PR_COSGU  = 0,  PR_OPTGU = 5, PR_CPRGU  = 0,  PR_BARCODE = '880'  WHERE "
            "PR_CODE = 'K1' ",
            HasSubstr("('N1','찌개 N1','0101','2026-05-01 10:00:00',9800,")));
    receive(ReceiveProductsStorePrice);
    sql("UPDATE CTP SET CTP_UP = NULL WHERE PR_CODE = 'N4'");
    EXPECT_THAT(failure(ReceiveProductsStorePrice), HasSubstr("\r\n94\r\n"));
}

TEST_F(ProductsTest, AvailabilityMovesTheVisibilityOnly) {
    product("K1");
    product("N1");
    product("N2", "0", "102000000000000");
    sql("INSERT INTO PRR VALUES ('1000','K1',NULL,'2026-05-01 10:00:00'),"
        "('1000','N1','2','2026-05-01 10:00:01'),('1000','N2','1','2026-05-01 10:00:01'),"
        "('1001','K1','1','2026-05-01 10:00:01')");
    stamp(sync::Group::Menu) = "2026-05-01 10:00:00"; // exactly: again
    EXPECT_THAT(
        statements(ReceiveAvailability),
        testing::UnorderedElementsAre(" UPDATE PR SET PR_VISIBLE = 0 WHERE PR_CODE = 'K1'",
                                      " UPDATE PR SET PR_VISIBLE = 2 WHERE PR_CODE = 'N1'"));
    receive(ReceiveAvailability);
    EXPECT_THAT(rows("SELECT PR_CODE,PR_VISIBLE FROM PR"), ElementsAre("K1|0"));
}

} // namespace
} // namespace quillet::receivers
