#include "support/foundation_numbers.h"

#include "support/printing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using limits_of_int64 = std::numeric_limits<qint64>;

TEST(leading_double, reads_the_longest_number_at_the_front)
{
    struct row
    {
        const char *name;
        const char *text;
        double expected;
    };
    const row rows[] = {
        {"whole number", "42", 42},
        {"white space in front", " \t\n 7.5", 7.5},
        {"text behind", "12px", 12},
        {"sign", "-3", -3},
        {"plus sign", "+3", 3},
        {"fraction without digits before it", ".5x", 0.5},
        {"point without digits behind it", "5.x", 5},
        {"exponent", "1e3", 1000},
        {"negative exponent", "25E-1", 2.5},
        {"exponent without digits", "1e+", 1},
        {"comma is no point", "1,5", 1},
        {"second point ends it", "1.2.3", 1.2},
        {"hexadecimal is not read", "0x10", 0},
        {"no number", "abc", 0},
        {"name of no number", "nan", 0},
        {"name of infinity", "inf", 0},
        {"sign alone", "-", 0},
        {"point alone", ".", 0},
        {"exponent alone", "e5", 0},
        {"empty", "", 0},
        {"too large", "1e999", std::numeric_limits<double>::infinity()},
        {"too small", "1e-999", 0},
    };
    for (const row &row : rows)
        EXPECT_EQ(support::leading_double(QString::fromLatin1(row.text)), row.expected) << row.name;
    EXPECT_EQ(support::leading_double(QStringLiteral("\u2003\u300012")), 12);
    EXPECT_EQ(support::leading_double(QStringLiteral("\u0661")), 0);
}

TEST(truncated_to_int64, cuts_toward_zero_and_stays_in_range)
{
    EXPECT_EQ(support::truncated_to_int64(2.9), 2);
    EXPECT_EQ(support::truncated_to_int64(-2.9), -2);
    EXPECT_EQ(support::truncated_to_int64(std::nan("")), 0);
    EXPECT_EQ(support::truncated_to_int64(9223372036854775808.0), limits_of_int64::max());
    EXPECT_EQ(support::truncated_to_int64(-9223372036854775808.0), limits_of_int64::min());
    EXPECT_EQ(support::truncated_to_int64(-HUGE_VAL), limits_of_int64::min());
    EXPECT_EQ(support::truncated_to_int64(9223372036854774784.0), 9223372036854774784);
}

} // namespace
