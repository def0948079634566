#include "formats/apple_double/apple_double.h"

#include "samples/apple_double_builder.h"
#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using formats::apple_double;

constexpr char first_name[] = "com.apple.metadata:kMDItemWhereFroms";
constexpr char last_name[] = "com.apple.lastuseddate#PS";

apple_double_builder two_attributes()
{
    apple_double_builder builder;
    builder.finder_info = finder_bytes(0x4000, 0);
    builder.attributes = {{first_name, "first value"}, {last_name, "last value"}};
    return builder;
}

std::unique_ptr<apple_double> read(const QByteArray &bytes)
{
    return apple_double::read(std::make_unique<evidence::memory_byte_source>(bytes));
}

TEST(apple_double, reads_attributes_and_finder_information)
{
    const auto file = read(two_attributes().bytes());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->attribute(first_name), QByteArray("first value"));
    EXPECT_EQ(file->attribute(last_name), QByteArray("last value"));
    EXPECT_EQ(file->attribute("com.apple.FinderInfo"), finder_bytes(0x4000, 0));
    EXPECT_FALSE(file->attribute("com.apple.quarantine"));
}

TEST(apple_double, reads_the_shape_of_the_system_itself)
{
    // Padding behind the values, and a resource fork at the end.
    apple_double_builder builder = two_attributes();
    builder.finder_length = 4096 - 286 - 50;
    builder.total_size = 4096 - 286;
    builder.resource_offset = 4096 - 286;
    const auto file = read(builder.bytes().leftJustified(4096, '\0'));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->attribute(last_name), QByteArray("last value"));
}

TEST(apple_double, cuts_copying_flags_and_keeps_empty_values)
{
    apple_double_builder builder;
    builder.attributes = {{"tags#S", "x"}, {"empty", ""}};
    const auto file = read(builder.bytes());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->attribute("tags"), QByteArray("x"));
    EXPECT_EQ(file->attribute("empty"), QByteArray());
    EXPECT_FALSE(file->attribute("com.apple.FinderInfo")) << "zeros mean none";
}

TEST(apple_double, version_1_has_no_attributes)
{
    apple_double_builder builder = two_attributes();
    builder.version = 0x00010000;
    const auto file = read(builder.bytes());
    ASSERT_TRUE(file);
    EXPECT_FALSE(file->attribute(first_name));
    EXPECT_TRUE(file->attribute("com.apple.FinderInfo"));
}

struct forgery
{
    const char *name;
    std::function<void(apple_double_builder &)> forge;
};

TEST(apple_double, refuses_what_the_system_refuses)
{
    using builder = apple_double_builder;
    const forgery forgeries[] = {
        {"another magic number", [](builder &b) { b.magic = 0x00051600; }},
        {"another version", [](builder &b) { b.version = 0x00030000; }},
        {"too many entries", [](builder &b) { b.entry_count = 16; }},
        {"entry inside the table", [](builder &b) { b.finder_offset = 49; }},
        {"entry beyond the end", [](builder &b) { b.finder_length = 100000; }},
        {"entry that wraps", [](builder &b) { b.finder_length = 0xfffffff0; }},
        {"empty entry behind the end", [](builder &b) { b.resource_offset = 100000; }},
        {"overlapping entries", [](builder &b) { b.resource_offset = 100; }},
        {"total beyond the entry", [](builder &b) { b.total_size = 100000; }},
        {"values beyond the total", [](builder &b) { b.total_size = 200; }},
        {"values that wrap", [](builder &b) { b.values_length = 0xffffffff; }},
        {"too many attributes", [](builder &b) { b.attribute_count = 257; }},
    };
    for (const forgery &one : forgeries) {
        apple_double_builder forged = two_attributes();
        one.forge(forged);
        EXPECT_FALSE(read(forged.bytes())) << one.name;
    }
    EXPECT_FALSE(read(two_attributes().bytes().left(81)));
    EXPECT_FALSE(read(two_attributes().bytes().leftJustified(16 * 1024 * 1024 + 1, '\0')));
    EXPECT_TRUE(read(two_attributes().bytes().leftJustified(16 * 1024 * 1024, '\0')));
}

TEST(apple_double, keeps_the_attributes_before_a_damaged_one)
{
    using builder = apple_double_builder;
    const forgery forgeries[] = {
        {"value before its area", [](builder &b) { b.last_value_offset = 60; }},
        {"value behind its area", [](builder &b) { b.last_value_offset = 100000; }},
        {"no name", [](builder &b) { b.last_name_length = 0; }},
        {"empty name", [](builder &b) { b.attributes.back().first = ""; }},
        {"name without end", [](builder &b) { b.last_name_length = 5; }},
        {"name with a NUL", [](builder &b) { b.attributes.back().first[3] = '\0'; }},
        {"name into the values", [](builder &b) { b.last_name_length = 200; }},
        {"more attributes than entries",
         [](builder &b) {
             b.attributes.pop_back();
             b.attribute_count = 2;
         }},
    };
    for (const forgery &one : forgeries) {
        apple_double_builder forged = two_attributes();
        one.forge(forged);
        const auto file = read(forged.bytes());
        ASSERT_TRUE(file) << one.name;
        EXPECT_EQ(file->attribute(first_name), QByteArray("first value")) << one.name;
        EXPECT_FALSE(file->attribute(last_name)) << one.name;
    }
}

TEST(apple_double, without_the_block_has_finder_information_only)
{
    apple_double_builder builder = two_attributes();
    builder.block_magic = 0;
    const auto file = read(builder.bytes());
    ASSERT_TRUE(file);
    EXPECT_FALSE(file->attribute(first_name));
    EXPECT_TRUE(file->attribute("com.apple.FinderInfo"));
}

TEST(apple_double, no_truncation_gives_another_value)
{
    const QByteArray whole = two_attributes().bytes();
    for (int length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(read(whole.left(length))) << length;
}

TEST(apple_double, values_above_a_mebibyte_are_left_out)
{
    apple_double_builder builder;
    builder.attributes = {{"fits", QByteArray(1024 * 1024, 'x')},
                          {"large", QByteArray(1024 * 1024 + 1, 'x')}};
    const auto file = read(builder.bytes());
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->attribute("fits"));
    EXPECT_FALSE(file->attribute("large"));
}

} // namespace
