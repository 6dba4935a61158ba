#include "db/ConnectionString.h"

#include <gtest/gtest.h>

namespace quillet::db {
namespace {

TEST(ConnectionString, FindsValuesWhateverTheirForm) {
    const ConnectionString text("PROVIDER=MSDataShape;Driver={Microsoft Access Driver (*.mdb)};"
                                "Dbq=food.MDB; DefaultDir = C:\\외식 업 ;Uid=Admin;dbq=other.mdb;;"
                                "Note={a;b}}c=d};Half={open;Last=1");
    EXPECT_EQ(text.value("DRIVER"), "Microsoft Access Driver (*.mdb)");
    EXPECT_EQ(text.value("DBQ"), "food.MDB") << "the first of two wins";
    EXPECT_EQ(text.value("defaultdir"), "C:\\외식 업");
    EXPECT_EQ(text.value("Note"), "a;b}c=d");
    EXPECT_EQ(text.value("Half"), "open;Last=1") << "a brace without its partner takes the rest";
    EXPECT_EQ(text.value("Last"), "");
    EXPECT_EQ(text.value(""), "");
    EXPECT_EQ(ConnectionString("").value("Driver"), "");
    EXPECT_EQ(ConnectionString("Server=127.0.0.1;PORT=33061").value("port"), "33061");
}

TEST(ConnectionString, DropsOneKeyAndNothingElse) {
    EXPECT_EQ(ConnectionString("PROVIDER=MSDataShape;Driver={A;PROVIDER=x};;Pwd= p ;")
                  .without("Provider"),
              "Driver={A;PROVIDER=x};;Pwd= p ;");
    EXPECT_EQ(ConnectionString("DRIVER={X};SERVER=s;provider={a;b}").without("PROVIDER"),
              "DRIVER={X};SERVER=s;");
    const std::string untouched = " junk ;DRIVER={X} y;PWD=;OPTION=16386";
    EXPECT_EQ(ConnectionString(untouched).without("PROVIDER"), untouched);
}

} // namespace
} // namespace quillet::db
