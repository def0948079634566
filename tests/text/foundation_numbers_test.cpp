#include "text/foundation_numbers.h"

#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

namespace {

using limits_of_int64 = std::numeric_limits<qint64>;

TEST(leading_double, reads_the_longest_number_at_the_front)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::map<const char *, double> rows = {
        {"42", 42},          {" \t\n 7.5", 7.5}, {"12px", 12},  {"-3", -3},     {"+3", 3},
        {".5x", 0.5},        {"5.x", 5},         {"1e3", 1000}, {"25E-1", 2.5}, {"1e+", 1},
        {"1,5", 1},          {"1.2.3", 1.2},     {"0x10", 0},   {"abc", 0},     {"nan", 0},
        {"inf", 0},          {"-", 0},           {".", 0},      {"e5", 0},      {"", 0},
        {"1e999", infinity}, {"1e-999", 0}};
    for (const auto &[number, expected] : rows)
        EXPECT_EQ(text::leading_double(QString::fromLatin1(number)), expected) << number;
    EXPECT_EQ(text::leading_double(QStringLiteral("\u2003\u300012")), 12);
    EXPECT_EQ(text::leading_double(QStringLiteral("\u0661")), 0);
}

TEST(truncated_to_int64, cuts_toward_zero_and_stays_in_range)
{
    EXPECT_EQ(text::truncated_to_int64(2.9), 2);
    EXPECT_EQ(text::truncated_to_int64(-2.9), -2);
    EXPECT_EQ(text::truncated_to_int64(std::nan("")), 0);
    EXPECT_EQ(text::truncated_to_int64(9223372036854775808.0), limits_of_int64::max());
    EXPECT_EQ(text::truncated_to_int64(-9223372036854775808.0), limits_of_int64::min());
    EXPECT_EQ(text::truncated_to_int64(-HUGE_VAL), limits_of_int64::min());
    EXPECT_EQ(text::truncated_to_int64(9223372036854774784.0), 9223372036854774784);
}

} // namespace
