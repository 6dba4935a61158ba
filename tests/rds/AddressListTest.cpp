#include "rds/http/AddressList.h"

#include "tests/support/Errors.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace quillet;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(AddressList, HoldsNetworksOfBothKinds) {
    const auto list = rds::AddressList::parse(
        "10.20.0.0/15, 192.168.1.7 172.16.4.128/25,fd00:1::/32,::ffff:100.64.0.0/106");
    for (const char* inside : {"10.20.0.0", "10.21.255.255", "::ffff:10.20.1.2", "192.168.1.7",
                               "172.16.4.128", "fd00:1:ffff::9", "fd00:1::1%lo", "100.127.255.255"})
        EXPECT_TRUE(list.contains(inside)) << inside;
    for (const char* outside : {"10.22.0.0", "10.19.255.255", "192.168.1.6", "172.16.4.127",
                                "fd00:2::", "::10.20.0.0", "100.128.0.0", "", "x", "10.20.0.1:80"})
        EXPECT_FALSE(list.contains(outside)) << outside;

    const auto all = rds::AddressList::parse("0.0.0.0/0");
    EXPECT_TRUE(all.contains("203.0.113.9"));
    EXPECT_FALSE(all.contains("2001:db8::1"));
    EXPECT_FALSE(rds::AddressList::parse("::/0").contains("::ffff:203.0.113.9"));

    const auto loopback = rds::AddressList::loopback();
    for (const char* inside : {"127.0.0.1", "127.255.0.3", "::1", "::ffff:127.0.0.1"})
        EXPECT_TRUE(loopback.contains(inside)) << inside;
    for (const char* outside : {"128.0.0.0", "126.255.255.255", "::2", "::"})
        EXPECT_FALSE(loopback.contains(outside)) << outside;
}

TEST(AddressList, SaysWhatIsWrongWithANetwork) {
    const std::vector<std::pair<const char*, const char*>> wrong{
        {"", "empty"},
        {" , ", "empty"},
        {"x", "'x' is no network"},
        {"10.0.0.0/33", "from 0 to 32"},
        {"10.0.0.0/", "from 0 to 32"},
        {"10.0.0.0/-1", "from 0 to 32"},
        {"10.0.0.0/8/8", "from 0 to 32"},
        {"fd00::/129", "from 0 to 128"},
        {"::ffff:10.0.0.0/8", "from 96 to 128"},
        {"10.0.0.1/8", "write 10.0.0.0/8, for the one address 10.0.0.1"},
        {"fd00::1/64", "write fd00::/64"},
        {"127.0.0.1, 10.0.0/8", "'10.0.0/8' is no network"},
        {"fe80::1%eth0", "is no network"}};
    for (const auto& c : wrong)
        EXPECT_THAT(tests::errorTextOf([&] { rds::AddressList::parse(c.first); }),
                    AllOf(StartsWith("3001 "), HasSubstr(c.second)))
            << c.first;
}

} // namespace
