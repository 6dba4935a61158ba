#include "rds/tablegram/CodePage.h"

#include "data/Error.h"
#include "tests/support/Hex.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using quillet::rds::CodePage;
using quillet::tests::bytes;
using quillet::tests::hex;

std::string toUtf8(const CodePage& codePage, const std::string& text) {
    std::string out(3 * text.size(), '\0');
    out.resize(codePage.toUtf8(text, out.data()));
    return out;
}

std::string fromUtf8(const CodePage& codePage, const std::string& text) {
    std::string out = ">";
    const std::size_t size = codePage.appendFromUtf8(text, out);
    EXPECT_EQ(size, out.size() - 1);
    return out.substr(1);
}

TEST(CodePage, ConvertsKoreanBothWays) {
    const CodePage korean(949);
    std::string wide, narrow;
    for (int i = 0; i < 2000; ++i) { // longer than any buffer inside
        wide += "가a한글힣";         // the last is in none of the older sets
        narrow += bytes("B0A1 'a' C7D1B1DB C652");
    }
    EXPECT_EQ(toUtf8(korean, narrow), wide);
    EXPECT_EQ(fromUtf8(korean, wide), narrow);
    EXPECT_EQ(toUtf8(korean, "plain"), "plain");
    EXPECT_EQ(toUtf8(korean, ""), "");
}

TEST(CodePage, NeverFailsOnWhatCannotBeConverted) {
    const CodePage korean(949);
    EXPECT_EQ(fromUtf8(korean, "한😀a"), bytes("C7D1 '?a'"));
    EXPECT_EQ(fromUtf8(korean, "\xED\x95"
                               "b\xFF"),
              "?b?");
    EXPECT_EQ(toUtf8(korean, bytes("C7D1 FF 'a'")), "한\xEF\xBF\xBD"
                                                    "a");
    EXPECT_EQ(toUtf8(korean, bytes("'a' C7")), "a\xEF\xBF\xBD") << "half a character at the end";
    EXPECT_THROW(toUtf8(CodePage(7), bytes("C7D1")), quillet::data::Error);
}

} // namespace
