#include "generated_index.h"

#include "samples/spotlight_store_writer.h"

using namespace samples;

namespace generated_index {

QString folder_name(quint64 id)
{
    return QStringLiteral("Folder %1 of the user").arg(id);
}

QString file_name(quint64 id)
{
    return QStringLiteral("Document %1.txt").arg(id);
}

QHash<QString, QByteArray> of_volume(quint64 records)
{
    store_writer writer;
    writer.page_packing(packing::lz4_frames);
    const quint32 used = writer.attribute("kMDItemUsedDates", 12, 2);
    const quint32 size = writer.attribute("kMDItemLogicalSize", 7, 0x48);
    const quint32 comment = writer.attribute("kMDItemTextContentLanguage", 11, 0);
    writer.root();
    quint64 folder = 2;
    for (quint64 id = first_id; id < first_id + records; ++id) {
        const bool is_folder = id % records_per_folder == 0;
        const QByteArray name = (is_folder ? folder_name(id) : file_name(id)).toUtf8();
        record_writer record(id, is_folder ? 2 : folder);
        record.add(store_writer::file_name, prefixed(name + '\0'));
        record.add(used, prefixed(date(1.5e9 + double(id)) + date(1.6e9)));
        record.add(size, variable(id * 977));
        record.add(comment, prefixed(QByteArray(150, char('a' + id % 26))));
        writer.add(record);
        if (is_folder)
            folder = id;
    }
    return writer.folder();
}

} // namespace generated_index
