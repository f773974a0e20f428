#include <gtest/gtest.h>

#include "services/TextValues.h"

TEST(TextValues, ReadsLeadingNumberLikeATextField) {
    const std::vector<std::pair<QString, int>> cases = {
        {"12", 12}, {"  -7px", -7}, {"+3", 3}, {"", 0}, {"abc", 0}, {"3.9", 3},
        {"99999999999", 2147483647}, {"-99999999999", -2147483647 - 1}};
    for (const auto& [text, value] : cases) EXPECT_EQ(TextValues::intValue(text), value) << text.toStdString();
}

TEST(TextValues, ReadsDecimalsInTheCLocale) {
    EXPECT_DOUBLE_EQ(TextValues::doubleValue("0.75"), 0.75);
    EXPECT_DOUBLE_EQ(TextValues::doubleValue(" -1.5e1x"), -15.0);
    EXPECT_DOUBLE_EQ(TextValues::doubleValue(".5"), 0.5);
    EXPECT_DOUBLE_EQ(TextValues::doubleValue("x1"), 0.0);
}
