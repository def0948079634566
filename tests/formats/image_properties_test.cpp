#include "platform/image_properties.h"

#include "formats/exif/image_gps.h"
#include "samples/forged_source.h"
#include "samples/image_builder.h"
#include "tests/fixtures/held_place.h"
#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace image_builder;

class image_properties_test : public ::testing::Test
{
protected:
    [[nodiscard]] formats::gps_position position_in(const QByteArray &image) const
    {
        return platform::read_gps_position(held_place(files.write(QStringLiteral("image"), image)));
    }

    forged_source files;
};

// 48 degrees 51.5 minutes, 2 degrees 17 minutes 42 seconds.
exif_builder paris(const char *latitude_reference = "N", const char *longitude_reference = "E",
                   bool is_big_endian = true)
{
    exif_builder exif(is_big_endian);
    exif.reference(1, QByteArray(latitude_reference, 2))
        .coordinate(2, {{48, 1}, {515, 10}, {0, 1}})
        .reference(3, QByteArray(longitude_reference, 2))
        .coordinate(4, {{2, 1}, {17, 1}, {42, 1}});
    return exif;
}

void expect_paris(const formats::gps_position &position, const char *latitude_reference = "N",
                  const char *longitude_reference = "E")
{
    ASSERT_TRUE(position.latitude && position.longitude);
    EXPECT_DOUBLE_EQ(*position.latitude, 48.0 + 51.5 / 60);
    EXPECT_DOUBLE_EQ(*position.longitude, 2.0 + 17.0 / 60 + 42.0 / 3600);
    EXPECT_EQ(position.latitude_reference, QLatin1String(latitude_reference));
    EXPECT_EQ(position.longitude_reference, QLatin1String(longitude_reference));
}

bool is_nowhere(const formats::gps_position &position)
{
    return !position.latitude && !position.longitude && position.latitude_reference.isNull() &&
           position.longitude_reference.isNull();
}

QByteArray heic(const QByteArray &block)
{
    return heif_builder().file(block);
}

QByteArray tiff(const QByteArray &block)
{
    return block;
}

TEST_F(image_properties_test, reads_each_hemisphere_from_each_container)
{
    const std::pair<const char *, QByteArray (*)(const QByteArray &)> containers[] = {
        {"JPEG", jpeg}, {"TIFF", tiff}, {"PNG", png}, {"WebP", webp}, {"HEIC", heic}};
    for (const auto &[name, wrap] : containers) {
        for (const char *latitude : {"N", "S"}) {
            for (const char *longitude : {"E", "W"}) {
                SCOPED_TRACE(std::string(name) + latitude + longitude);
                const bool is_big_endian = *latitude == 'N';
                const QByteArray block = paris(latitude, longitude, is_big_endian).block();
                expect_paris(position_in(wrap(block)), latitude, longitude);
            }
        }
    }
}

TEST_F(image_properties_test, finds_the_block_in_its_other_places)
{
    const QByteArray block = paris().block();
    exif_builder late = paris();
    late.filler_bytes = 700'000;
    heif_builder plain_heif;
    plain_heif.prefix = be32(0);
    heif_builder avif;
    avif.major_brand = "avif";
    exif_builder of_type_13 = paris();
    of_type_13.pointer_type = 13;
    heif_builder wide;
    wide.is_wide = true;
    heif_builder inside;
    inside.in_item_data = true;
    const std::pair<const char *, QByteArray> images[] = {
        {"TIFF with its directories behind the picture", late.block()},
        {"PNG with the prefix of JPEG", png(exif_prefix() + block)},
        {"WebP with the prefix of JPEG", webp(exif_prefix() + block)},
        {"HEIF without the prefix of JPEG", plain_heif.file(block)},
        {"AVIF", avif.file(block)},
        {"HEIF with wide numbers", wide.file(block)},
        {"HEIF with the block among the items' descriptions", inside.file(block)},
        {"HEIF whose end is missing", heic(block).chopped(5)},
        {"TIFF whose directory has its own type", of_type_13.block()},
        {"JPEG with markers that have no length",
         QByteArray("\xff\xd8\xff\x01\xff\xd0", 6) + jpeg(block).mid(2)},
        {"first of two blocks counts",
         QByteArray("\xff\xd8") + jpeg_segment('\xe1', exif_prefix() + block) +
             jpeg_segment('\xe1', exif_prefix() + paris("S", "W").block())},
    };
    for (const auto &[name, image] : images) {
        SCOPED_TRACE(name);
        expect_paris(position_in(image));
    }
}

TEST_F(image_properties_test, knows_images_by_their_content)
{
    const QByteArray block = paris().block();
    heif_builder video;
    video.major_brand = "isom";
    const std::pair<const char *, QByteArray> not_read[] = {
        {"empty", {}},
        {"JPEG whose block comes behind the scan", QByteArray("\xff\xd8") +
                                                       jpeg_segment('\xda', "s") +
                                                       jpeg_segment('\xe1', exif_prefix() + block)},
        {"WebP whose block lies behind its announced end",
         "RIFF" + le32(4) + "WEBP" + webp_chunk("EXIF", block)},
        {"PNG whose block comes behind its end",
         "\x89PNG\r\n\x1a\n" + png_chunk("IEND", {}) + png_chunk("eXIf", block)},
        {"video", video.file(block).replace("mif1", "mp42")},
        {"another magic number",
         QByteArray(paris().block()).replace(2, 2, QByteArray("\0\x2b", 2))},
        {"EXIF prefix alone", exif_prefix() + block},
    };
    for (const auto &[name, image] : not_read)
        EXPECT_TRUE(is_nowhere(position_in(image))) << name;
}

struct odd_value
{
    const char *name;
    std::vector<rational> parts;
    quint16 type;
    std::optional<double> expected;
};

TEST_F(image_properties_test, reads_odd_coordinates)
{
    const odd_value values[] = {
        {"degrees 0/0", {{0, 0}, {0, 0}, {0, 0}}, 5, std::nullopt},
        {"degrees 5/0", {{5, 0}, {30, 1}, {0, 1}}, 5, std::nullopt},
        {"minutes 0/0 count nothing", {{5, 1}, {0, 0}, {36, 1}}, 5, 5.01},
        {"seconds 9/0 count nothing", {{5, 1}, {30, 1}, {9, 0}}, 5, 5.5},
        {"degrees alone", {{11, 2}}, 5, 5.5},
        {"two parts", {{5, 1}, {30, 1}}, 5, 5.5},
        {"a fourth part counts nothing", {{5, 1}, {30, 1}, {0, 1}, {1, 1}}, 5, 5.5},
        {"none", {}, 5, std::nullopt},
        {"beyond the globe", {{4294967295U, 1}, {0, 1}, {0, 1}}, 5, 4294967295.0},
        {"signed, negative", {{4294967291U, 1}, {4294967266U, 1}, {0, 1}}, 10, 5.5},
        {"of another type", {{5, 1}, {0, 1}, {0, 1}}, 12, std::nullopt},
    };
    for (const odd_value &value : values) {
        const auto position =
            position_in(exif_builder().coordinate(2, value.parts, value.type).block());
        EXPECT_EQ(position.latitude, value.expected) << value.name;
        EXPECT_FALSE(position.longitude) << value.name;
    }
}

TEST_F(image_properties_test, hands_out_references_as_stored)
{
    const std::tuple<const char *, QByteArray, quint16, const char *> references[] = {
        {"lower case", QByteArray("s\0", 2), 2, "s"},
        {"blank in front", QByteArray(" S\0", 3), 2, " S"},
        {"long text is cut", "South of everything", 2, "South of everyth"},
        {"type 0 is none", QByteArray("S\0", 2), 0, nullptr},
        {"empty is none", QByteArray("\0\0", 2), 2, nullptr},
    };
    for (const auto &[name, text, type, expected] : references) {
        const auto position =
            position_in(exif_builder().reference(1, text, type).coordinate(2, {{1, 1}}).block());
        EXPECT_EQ(position.latitude_reference, QLatin1String(expected)) << name;
        EXPECT_EQ(position.latitude_reference.isNull(), expected == nullptr) << name;
        EXPECT_TRUE(position.latitude) << name;
    }
}

TEST_F(image_properties_test, forged_offsets_give_no_position)
{
    const std::pair<const char *, std::function<void(exif_builder &)>> forgeries[] = {
        {"first directory inside the header", [](auto &exif) { exif.forged_first_offset = 4; }},
        {"first directory behind the end", [](auto &exif) { exif.forged_first_offset = 9999; }},
        {"first directory far away", [](auto &exif) { exif.forged_first_offset = 0x7fffffff; }},
        {"GPS directory behind the end", [](auto &exif) { exif.pointer_shift = 5000; }},
        {"GPS directory before the start", [](auto &exif) { exif.pointer_shift = 0xffffff00U; }},
        {"pointer of another type", [](auto &exif) { exif.pointer_type = 3; }},
        {"two pointers", [](auto &exif) { exif.pointer_count = 2; }},
    };
    for (const auto &[name, forge] : forgeries) {
        exif_builder exif = paris();
        forge(exif);
        EXPECT_TRUE(is_nowhere(position_in(exif.block()))) << name;
    }
    const auto huge = position_in(exif_builder().field(2, 5, 0x20000001, "12345678").block());
    EXPECT_FALSE(huge.latitude);
    heif_builder heif;
    heif.forged_exif_length = 0x7fffffff;
    EXPECT_TRUE(is_nowhere(position_in(heif.file(paris().block()))));
    heif.forged_exif_length = -1;
    heif.prefix = be32(0xffffffff);
    EXPECT_TRUE(is_nowhere(position_in(heif.file(paris().block()))));
}

TEST_F(image_properties_test, truncated_images_never_give_another_position)
{
    const QByteArray block = paris().block();
    for (const QByteArray &image :
         {jpeg(block), tiff(block), png(block), webp(block), heic(block)}) {
        for (int length = 0; length < image.size(); length += 3) {
            const auto position = position_in(image.left(length));
            EXPECT_DOUBLE_EQ(position.latitude.value_or(48.0 + 51.5 / 60), 48.0 + 51.5 / 60);
            EXPECT_DOUBLE_EQ(position.longitude.value_or(2.295), 2.295) << length;
        }
    }
}

// Counts what is read of an image in memory.
class counted_image final : public evidence::byte_source
{
public:
    explicit counted_image(const QByteArray &image)
        : image_(image)
    {
    }
    [[nodiscard]] qint64 size() const override { return image_.size(); }
    [[nodiscard]] QByteArray read(qint64 offset, qint64 length) override
    {
        const QByteArray bytes = image_.read(offset, length);
        bytes_read += bytes.size();
        return bytes;
    }
    qint64 bytes_read = 0;

private:
    evidence::memory_byte_source image_;
};

TEST(image_gps, reads_no_more_than_it_needs)
{
    const QByteArray picture(1024 * 1024, 'p');
    const QByteArray block = paris().block();
    exif_builder late = paris();
    late.filler_bytes = picture.size();
    heif_builder heif;
    heif.picture = QByteArray(17 * 1024 * 1024, 'p'); // smaller ones could be metadata
    for (const QByteArray &image : {late.block(), png_of(picture, block), heif.file(block),
                                    jpeg(block + picture.left(60000))}) {
        counted_image counted(image);
        expect_paris(formats::read_image_gps(counted));
        EXPECT_LT(counted.bytes_read, 4096);
    }
}

} // namespace
