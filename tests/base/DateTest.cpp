#include <gtest/gtest.h>

#include "base/Date.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;

TEST(DateTest, staysAtTheEndsOfItsRange) {
    EXPECT_EQ(Date::fromSeconds(INT64_MAX), Date::distantFuture());
    EXPECT_EQ(Date::fromSeconds(INT64_MIN), Date::distantPast());
    EXPECT_EQ(Date::distantFuture() + 1s, Date::distantFuture());
    EXPECT_EQ(Date::distantPast() - 1s, Date::distantPast());
    EXPECT_EQ(Date::distantFuture() - Date::distantPast(), Duration::max());
}

}  // namespace
}  // namespace vostrel
