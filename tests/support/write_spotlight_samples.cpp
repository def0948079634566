// Writes the fuzz targets' seeds:  write_spotlight_samples FOLDER
// The same program always writes the same bytes, so that committed seeds can be made anew.
#include "spotlight_store_writer.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

using namespace test_support;

void fill(store_writer *writer)
{
    const qint32 jpeg = qint32(writer->text("public.jpeg"));
    const qint32 image = qint32(writer->text("Image\x16\x02"));
    const qint32 english = qint32(writer->text("JPEG image\x16\x02"
                                               "en"));
    const quint32 tree = writer->list({jpeg, -1, jpeg});
    const quint32 kind = writer->localized({image, english});
    const quint32 used = writer->attribute("kMDItemUsedDates", 12, 0x02);
    const quint32 where = writer->attribute("kMDItemWhereFroms", 11, 0x42);
    const quint32 title = writer->attribute("kMDItemDisplayName", 11, 0x83);
    const quint32 type = writer->attribute("kMDItemContentType", 15, 0x48);
    const quint32 types = writer->attribute("kMDItemContentTypeTree", 15, 0x4a);
    const quint32 kinds = writer->attribute("kMDItemKind", 15, 0xc3);
    const quint32 flags = writer->attribute("_kMDItemFinderFlags", 7, 0x4c);
    const quint32 sizes = writer->attribute("sizes", 8, 0x02);
    const quint32 single = writer->attribute("single", 9, 0x00);
    const quint32 thumb = writer->attribute("data", 14, 0x00);
    writer->root().file(20, 2, "Users").end_page();
    writer->add(record_writer(21, 20)
                    .add(store_writer::file_name, prefixed(QByteArray("a:b\xcc\x81\0", 6)))
                    .add(used, prefixed(date(1.5e9) + date(1.6e9)))
                    .add(where, prefixed(QByteArray("http://a/\0\0", 11)))
                    .add(title, prefixed(QByteArray("a\x16\x02\0", 4)))
                    .add(type, variable(quint64(jpeg)))
                    .add(types, variable(tree))
                    .add(kinds, variable(kind))
                    .add(flags, variable(0x4000))
                    .add(sizes, many(8, {1, 300, quint64(-1)}))
                    .add(single, little_float(0.5F))
                    .add(thumb, prefixed("xyz")));
}

// Pages end in padding, which would only make seeds larger.
QByteArray without_final_zeros(QByteArray bytes)
{
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    return bytes;
}

// The form that the fuzz target for side files takes apart.
QByteArray chained(const QHash<QString, QByteArray> &files)
{
    const char *const parts[] = {"header", "offsets", "data"};
    QByteArray chain;
    for (int number = 0; number < 16; ++number) {
        const QString name = number == 0 ? QStringLiteral("store.db")
                                         : QStringLiteral("dbStr-%1.map.").arg((number + 2) / 3) +
                                               QLatin1String(parts[(number - 1) % 3]);
        const QByteArray bytes = without_final_zeros(files.value(name));
        chain += QByteArray(1, char(number)) + little_u32(quint32(bytes.size())).left(2) + bytes;
    }
    return chain;
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

int main(int argc, char **argv)
{
    const QDir folder(QString::fromLocal8Bit(argc == 2 ? argv[1] : "."));
    const struct
    {
        const char *name;
        packing how;
        bool swapped;
    } shapes[] = {{"plain", packing::plain, false},
                  {"zlib", packing::zlib, false},
                  {"frames_swapped", packing::lz4_frames, true},
                  {"block", packing::lz4_block, false},
                  {"lzfse", packing::lzfse, false}};
    bool written = folder.mkpath(QStringLiteral("spotlight_store")) &&
                   folder.mkpath(QStringLiteral("spotlight_side_files"));
    for (const auto &shape : shapes) {
        store_writer inside;
        inside.page_bytes(0x1000).page_packing(shape.how).swap_ids(shape.swapped);
        fill(&inside);
        store_writer beside;
        beside.page_bytes(0x1000)
            .page_packing(shape.how)
            .swap_ids(shape.swapped)
            .tables_beside(true);
        fill(&beside);
        const QString name = QString::fromLatin1(shape.name);
        written = written &&
                  write(folder.filePath(QLatin1String("spotlight_store/") + name),
                        without_final_zeros(inside.store())) &&
                  write(folder.filePath(QLatin1String("spotlight_side_files/") + name),
                        chained(beside.folder()));
    }
    if (!written)
        std::fprintf(stderr, "the samples could not be written\n");
    return written ? 0 : 1;
}
