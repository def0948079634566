// Writes the volume's index of the invented source:  make_example_index SOURCE
// Sizes are those of the files that lie there; the same files always give the same bytes.
#include "samples/spotlight_store_writer.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>

namespace {

using namespace samples;

constexpr char store_identity[] = "6C0C8B5E-3F1D-4C55-9A54-0D1B7E2A9F30";
constexpr qint64 updated_microseconds = 1600000000000000;
constexpr quint64 root_id = 2;
constexpr quint64 first_file_id = 20;

constexpr char configuration[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n<dict>\n\t<key>Stores</key>\n\t<dict>\n\t\t<key>%1</key>\n"
    "\t\t<dict>\n\t\t\t<key>CreationDate</key>\n\t\t\t<date>2018-01-02T07:30:00Z</date>\n"
    "\t\t\t<key>CreationVersion</key>\n\t\t\t<string>Version 10.13.6 (Build 17G65)</string>\n"
    "\t\t\t<key>IndexVersion</key>\n\t\t\t<integer>95</integer>\n"
    "\t\t\t<key>PartialPath</key>\n\t\t\t<string>/</string>\n"
    "\t\t</dict>\n\t</dict>\n</dict>\n</plist>\n";

// A content type and what the system calls it.
struct content_kind
{
    const char *type;
    const char *english;
    const char *german;
};

constexpr content_kind kinds[] = {
    {"public.folder", "Folder", "Ordner"},
    {"public.jpeg", "JPEG image", "JPEG-Bild"},
    {"public.png", "PNG image", "PNG-Bild"},
    {"com.adobe.pdf", "PDF document", "PDF-Dokument"},
    {"public.plain-text", "Plain Text Document", "Reines Textdokument"},
    {"public.svg-image", "SVG document", "SVG-Dokument"},
};
enum kind_number { folder, jpeg, png, pdf, plain_text, svg, kind_count };

// Times are UTC; days of use are the examined machine's midnights.
struct indexed_file
{
    const char *path;
    kind_number kind;
    const char *created;
    const char *changed;
    const char *added;
    const char *last_used; // null: never
    std::vector<const char *> used;
    std::vector<const char *> where_from;
};

const std::vector<indexed_file> indexed_files = {
    {"/Users/amelia/Pictures/Museum shots/Harbour at dusk.jpg",
     jpeg,
     "2020-09-29T18:12:07Z",
     "2020-09-29T18:12:07Z",
     "2020-09-30T19:05:00.250Z",
     "2020-10-04T07:41:12.500Z",
     {"2020-09-29T22:00:00Z", "2020-09-30T22:00:00Z", "2020-10-03T22:00:00Z"},
     {}},
    {"/Users/amelia/Downloads/web/Plan A; Plan B.txt",
     plain_text,
     "2020-05-07T10:40:00Z",
     "2020-05-07T10:40:00Z",
     "2020-05-09T10:46:41Z",
     "2020-05-09T11:02:00Z",
     {"2020-05-08T22:00:00Z"},
     {}},
    {"/Users/amelia/Downloads/web/photos",
     folder,
     "2020-05-09T10:46:44Z",
     "2020-05-09T10:46:52Z",
     "2020-05-09T10:46:44Z",
     nullptr,
     {},
     {}},
    {"/Users/amelia/Documents/Proofs/Printer's \"final\" proof.pdf",
     pdf,
     "2019-10-15T13:20:11Z",
     "2019-10-16T08:00:00Z",
     "2019-10-15T13:20:30Z",
     "2019-10-16T14:01:33Z",
     {"2019-10-14T22:00:00Z", "2019-10-15T22:00:00Z"},
     {"https://print.example.com/proofs/final.pdf", ""}},
    // Its companion holds where it comes from, which the index does not.
    {"/Users/amelia/Documents/Tender documents.pdf",
     pdf,
     "2020-06-01T11:52:20Z",
     "2020-06-01T11:52:20Z",
     "2020-06-01T11:52:25Z",
     "2020-06-08T07:06:40.750Z",
     {"2020-05-31T22:00:00Z", "2020-06-07T22:00:00Z"},
     {}},
    // Moved here since: the transfer names another place, and a name alone is no match.
    {"/Users/amelia/Documents/Logos/logo.svg",
     svg,
     "2020-04-30T00:00:00Z",
     "2020-04-30T00:00:00Z",
     "2020-05-20T16:00:00Z",
     "2020-05-21T09:15:00Z",
     {"2020-05-20T22:00:00Z"},
     {}},
    {"/Users/jörg/Bilder/写真 – 東京.jpg",
     jpeg,
     "2020-05-18T03:00:01Z",
     "2020-05-18T03:00:01Z",
     "2020-05-20T18:39:00Z",
     "2020-05-20T18:41:10Z",
     {"2020-05-19T22:00:00Z"},
     {}},
    {"/Users/jörg/Schreibtisch/Übung/Aufgaben/Blatt 1.pdf",
     pdf,
     "2019-12-31T00:00:00Z",
     "2019-12-31T00:00:00Z",
     "2020-01-01T00:02:15Z",
     "2020-01-07T17:30:00Z",
     {"2019-12-31T23:00:00Z", "2020-01-06T23:00:00Z"},
     {}},
    {"/Users/noah quist/Restore/Archive/notes 2021-03.txt",
     plain_text,
     "2021-03-31T11:00:00Z",
     "2021-03-31T11:00:00Z",
     "2022-04-15T05:21:50Z",
     "2022-04-15T05:30:00Z",
     {"2022-04-14T22:00:00Z"},
     {}},
    {"/Users/noah quist/Documents/Ablage/Lageplan.png",
     png,
     "2022-08-22T12:00:00Z",
     "2022-08-22T12:00:00Z",
     "2022-08-22T12:00:03Z",
     nullptr,
     {},
     {"Büro-Mac", "Empfang"}},
};

QByteArray date_of(const char *text)
{
    const QDateTime time = QDateTime::fromString(QString::fromLatin1(text), Qt::ISODateWithMs);
    return date(double(time.toMSecsSinceEpoch()) / 1000.0);
}

QByteArray dates_of(const std::vector<const char *> &texts)
{
    QByteArray dates;
    for (const char *text : texts)
        dates += date_of(text);
    return prefixed(dates);
}

QByteArray texts_of(const std::vector<const char *> &texts)
{
    QByteArray joined;
    for (const char *text : texts)
        joined += QByteArray(text) + '\0';
    return prefixed(joined);
}

quint64 entry_count(const QString &path)
{
    const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
    return quint64(QDir(path).entryList(all).size());
}

class example_index
{
public:
    explicit example_index(const QString &source)
        : source_(source)
    {
        writer_.page_bytes(0x1000).root();
        for (size_t i = 0; i < kind_count; ++i) {
            const QByteArray english = QByteArray(kinds[i].english) + "\x16\x02";
            types_[i] = writer_.text(kinds[i].type);
            const qint32 initial = qint32(writer_.text(english));
            const qint32 named = qint32(writer_.text(english + "en"));
            const QByteArray german = QByteArray(kinds[i].german) + "\x16\x02";
            names_[i] = writer_.localized({initial, named, qint32(writer_.text(german + "de"))});
        }
    }

    // False when the source has no such file.
    bool add(const indexed_file &file)
    {
        const QString path = QString::fromUtf8(file.path);
        const QFileInfo info(source_ + path);
        if (!info.exists())
            return false;
        const quint64 parent = folder_id(path.left(path.lastIndexOf(QLatin1Char('/'))));
        record_writer record(next_id_++, parent, updated_microseconds);
        record.add(store_writer::file_name, prefixed(stored_name(path) + '\0'))
            .add(created_, date_of(file.created))
            .add(changed_, date_of(file.changed))
            .add(content_created_, date_of(file.created))
            .add(content_changed_, date_of(file.changed))
            .add(added_, date_of(file.added))
            .add(content_type_, variable(types_[file.kind]))
            .add(kind_, variable(names_[file.kind]));
        if (file.kind == folder)
            record.add(node_count_, variable(entry_count(info.filePath())));
        else
            record.add(logical_size_, variable(quint64(info.size())));
        if (file.last_used != nullptr)
            record.add(last_used_, date_of(file.last_used)).add(used_, dates_of(file.used));
        if (!file.where_from.empty())
            record.add(where_from_, texts_of(file.where_from));
        writer_.add(record);
        return true;
    }

    [[nodiscard]] QByteArray store() { return writer_.store(); }

private:
    // The volume's file system decomposes accents.
    [[nodiscard]] static QByteArray stored_name(const QString &path)
    {
        return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1)
            .normalized(QString::NormalizationForm_D)
            .toUtf8();
    }

    // Adds the records of the folder and of those above it when they are not there yet.
    quint64 folder_id(const QString &path)
    {
        if (path.isEmpty())
            return root_id;
        const auto known = folders_.constFind(path);
        if (known != folders_.constEnd())
            return *known;
        const quint64 parent = folder_id(path.left(path.lastIndexOf(QLatin1Char('/'))));
        const quint64 id = next_id_++;
        writer_.file(id, parent, stored_name(path), updated_microseconds);
        folders_.insert(path, id);
        return id;
    }

    QString source_;
    store_writer writer_;
    quint64 next_id_ = first_file_id;
    QHash<QString, quint64> folders_;
    quint32 types_[kind_count] = {};
    quint32 names_[kind_count] = {};
    quint32 created_ = writer_.attribute("_kMDItemCreationDate", 12, 0x4c);
    quint32 changed_ = writer_.attribute("_kMDItemContentChangeDate", 12, 0x4c);
    quint32 node_count_ = writer_.attribute("_kMDItemNodeCount", 7, 0x4c);
    quint32 logical_size_ = writer_.attribute("kMDItemLogicalSize", 7, 0x48);
    quint32 content_created_ = writer_.attribute("kMDItemContentCreationDate", 12, 0x40);
    quint32 content_changed_ = writer_.attribute("kMDItemContentModificationDate", 12, 0x40);
    quint32 added_ = writer_.attribute("kMDItemDateAdded", 12, 0x40);
    quint32 content_type_ = writer_.attribute("kMDItemContentType", 15, 0x48);
    quint32 kind_ = writer_.attribute("kMDItemKind", 15, 0xc3);
    quint32 last_used_ = writer_.attribute("kMDItemLastUsedDate", 12, 0x00);
    quint32 used_ = writer_.attribute("kMDItemUsedDates", 12, 0x02);
    quint32 where_from_ = writer_.attribute("kMDItemWhereFroms", 11, 0x42);
};

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_example_index SOURCE\n");
        return 2;
    }
    const QString source = QFile::decodeName(argv[1]);
    example_index index(source);
    for (const indexed_file &file : indexed_files) {
        if (!index.add(file)) {
            std::fprintf(stderr, "the source has no %s\n", file.path);
            return 1;
        }
    }
    const QString folder = source + QStringLiteral("/.Spotlight-V100/");
    const QString identity = QString::fromLatin1(store_identity);
    const QString store = folder + QStringLiteral("Store-V2/") + identity;
    const QByteArray listed = QString::fromLatin1(configuration).arg(identity).toUtf8();
    const bool written = QDir().mkpath(store) &&
                         write(folder + QStringLiteral("VolumeConfiguration.plist"), listed) &&
                         write(store + QStringLiteral("/store.db"), index.store());
    if (!written)
        std::fprintf(stderr, "the index could not be written\n");
    return written ? 0 : 1;
}
