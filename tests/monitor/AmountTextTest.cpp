#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "monitor/AmountText.h"

namespace vostrel {
namespace {

TEST(AmountTextTest, readsWhatPeopleType) {
    const std::pair<const char*, double> table[] = {{"20", 20},         {"1,5", 1.5}, {" 2.5\n", 2.5},
                                                    {"\u00A0-3\t", -3}, {"+.5", 0.5}, {"1e3", 1000}};
    for (const auto& [text, amount] : table)
        EXPECT_EQ(AmountText::parse(text), amount) << text;
    for (const char* text : {"", " ", "1.2.3", "1 2", "inf", "nan", "0x10", "1e400", "12GB", "1e", "-"})
        EXPECT_EQ(AmountText::parse(text), std::nullopt) << text;
}

TEST(AmountTextTest, writesNoMoreThanOneDecimal) {
    const std::pair<double, const char*> table[] = {{20, "20"},        {2.5, "2.5"},   {19.96, "20"},
                                                    {-0.04, "0"},      {-1.5, "-1.5"}, {-INFINITY, "-inf"},
                                                    {INFINITY, "inf"}, {NAN, "nan"}};
    for (const auto& [amount, text] : table)
        EXPECT_EQ(AmountText::format(amount), text);
}

}  // namespace
}  // namespace vostrel
