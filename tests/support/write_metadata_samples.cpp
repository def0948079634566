// Writes the seeds of the fuzz targets apple_double, attribute_value and image_gps:
//   write_metadata_samples FOLDER
// The same program always writes the same bytes, so that committed seeds can be made anew.
#include "apple_double_builder.h"
#include "binary_list_builder.h"
#include "image_builder.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

class sample_folder
{
public:
    explicit sample_folder(QString path)
        : path_(std::move(path))
    {
    }

    bool write(const char *target, const char *name, const QByteArray &bytes) const
    {
        const QDir folder(path_ + QLatin1Char('/') + QLatin1String(target));
        QFile sample(folder.filePath(QLatin1String(name)));
        return folder.mkpath(QStringLiteral(".")) && sample.open(QIODevice::WriteOnly) &&
               sample.write(bytes) == bytes.size();
    }

private:
    QString path_;
};

QByteArray where_from()
{
    binary_list_builder builder;
    const int page = builder.wide_text(QStringLiteral("http://\u00e9"));
    const int file = builder.text("http://a/b");
    return builder.list(static_cast<quint64>(builder.array({file, page})));
}

QByteArray scalars()
{
    binary_list_builder builder;
    const int date = builder.raw(QByteArray::fromHex("3341c1a5a5a5a00000"));
    const int real = builder.raw(QByteArray::fromHex("234048701234567890"));
    const int yes = builder.raw("\x09");
    const int number = builder.integer(500, 2);
    return builder.list(static_cast<quint64>(builder.array({date, real, yes, number})));
}

QByteArray companion(quint32 version)
{
    apple_double_builder builder;
    builder.version = version;
    builder.finder_info = finder_bytes(0x4002, 0x649134c0);
    builder.attributes = {
        {"com.apple.metadata:kMDItemWhereFroms", where_from()},
        {"com.apple.quarantine", "q/0081;5e5f;agent;"},
        {"com.apple.lastuseddate#PS", QByteArray::fromHex("00105e5f0000000080b2e60e00000000")}};
    return builder.bytes();
}

QByteArray position(bool is_big_endian)
{
    exif_builder exif(is_big_endian);
    return exif.reference(1, QByteArray("S\0", 2))
        .coordinate(2, {{48, 1}, {515, 10}, {0, 0}})
        .reference(3, QByteArray("W\0", 2))
        .coordinate(4, {{2, 1}, {17, 1}, {42, 1}}, 10)
        .block();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: write_metadata_samples FOLDER\n", stderr);
        return 2;
    }
    const sample_folder folder(QFile::decodeName(argv[1]));
    const QByteArray block = position(true);
    const bool is_written =
        folder.write("apple_double", "archive", companion(0x00020000)) &&
        folder.write("apple_double", "version_1", companion(0x00010000)) &&
        folder.write("attribute_value", "where_from", where_from()) &&
        folder.write("attribute_value", "scalars", scalars()) &&
        folder.write("attribute_value", "xml",
                     "<plist><array><string>a</string></array></plist>") &&
        folder.write("attribute_value", "text", "a \xc3\xa9") &&
        folder.write("attribute_value", "last_used",
                     QByteArray::fromHex("00105e5f0000000080b2e60e00000000")) &&
        folder.write("attribute_value", "finder_info", finder_bytes(0x4002, 0x649134c0)) &&
        folder.write("attribute_value", "created", "2015-05-09T10:45:12+02:00") &&
        folder.write("attribute_value", "name",
                     "user.DosStream.com.apple.metadata\xef\x80\xa2kMDItemWhereFroms#S:$DATA") &&
        folder.write("image_gps", "jpeg", image_builder::jpeg(block)) &&
        folder.write("image_gps", "tiff", position(false)) &&
        folder.write("image_gps", "png", image_builder::png(block)) &&
        folder.write("image_gps", "webp", image_builder::webp(block)) &&
        folder.write("image_gps", "heic", image_builder::heif_builder().file(block));
    return is_written ? 0 : 1;
}
