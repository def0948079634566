#include "formats/spotlight_store/spotlight_store.h"

#include "tests/fixtures/printing.h"
#include "tests/fixtures/spotlight_shown.h"
#include "samples/spotlight_store_writer.h"

#include <gtest/gtest.h>

#include <list>

#include <cmath>
#include <limits>

namespace {

using namespace samples;
using formats::spotlight_store;

using folder_files = QHash<QString, QByteArray>;

std::unique_ptr<spotlight_store> load(const folder_files &files)
{
    static std::list<formats::spotlight_budget> budgets; // they outlive the stores
    auto store =
        std::make_unique<spotlight_store>(std::make_unique<evidence::memory_byte_folder>(files),
                                          QStringLiteral("S"), &budgets.emplace_back());
    store->load();
    return store;
}

QString value_of(spotlight_store *store, const QString &path, const char *name)
{
    const auto found = store->index().find_path(path.split(QLatin1Char('/'), Qt::SkipEmptyParts));
    if (found.empty())
        return QStringLiteral("no record");
    const auto record = store->attributes(found.front());
    return record == nullptr ? QStringLiteral("unreadable")
                             : shown(record->value(QString::fromLatin1(name)));
}

// One attribute of each kind, and what it must come out as.
struct value_row
{
    const char *name;
    quint8 type;
    quint8 flags;
    QByteArray encoded;
    const char *expected;
};

const double not_a_number = std::numeric_limits<double>::quiet_NaN();

std::vector<value_row> value_rows()
{
    return {
        {"boolean true", 0, 0, variable(1), "true"},
        {"boolean false", 0, 0, variable(0), "false"},
        {"byte", 2, 0, variable(200), "200"},
        {"word", 6, 0, variable(70000), "70000"},
        {"words", 6, 2, many(4, {1, 0xfeffffff}), "[1, 4278190079]"},
        {"signed", 7, 0, variable(quint64(-5)), "-5"},
        {"signed many", 7, 2, many(8, {5, quint64(-1)}), "[5, -1]"},
        {"long", 8, 0, variable(0x8000100), "134217984"},
        {"long many", 8, 2, many(8, std::vector<quint64>(19, 300)),
         "[300, 300, 300, 300, 300, 300, 300, 300, 300, 300, 300, 300, 300, 300, 300, 300, 300, "
         "300, 300]"},
        {"too long for a signed number", 8, 0, variable(quint64(-1)), "none"},
        {"no numbers", 7, 2, many(8, {}), "none"},
        {"single", 9, 0, little_float(1.5F), "1.5f"},
        {"singles", 9, 2, prefixed(little_float(1.5F) + little_float(-2)), "[1.5f, -2f]"},
        {"double", 10, 0, little_double(48.8583701), "48.858370100000002d"},
        {"doubles", 10, 2, prefixed(little_double(0.5)), "[0.5d]"},
        {"text", 11, 0, prefixed(QByteArray("caf\xc3\xa9\0", 6)), "'caf\u00e9'"},
        {"text of wrong bytes", 11, 0,
         prefixed("a\xff"
                  "b"),
         "'a\ufffdb'"},
        {"text with a mark in front", 11, 0, prefixed("\xef\xbb\xbfx"), "'\ufeffx'"},
        {"empty text", 11, 0, prefixed(QByteArray("\0", 1)), "''"},
        {"texts", 11, 2, prefixed(QByteArray("a\0\0b\0", 5)), "['a', '', 'b']"},
        {"last text empty", 11, 2, prefixed(QByteArray("a\0\0", 3)), "['a', '']"},
        {"no texts", 11, 2, prefixed({}), "none"},
        {"text with languages", 11, 3,
         prefixed(QByteArray("x\x16\x02\0y\x16\x02"
                             "en\0",
                             9)),
         "'y'"},
        {"text without language", 11, 0x83, prefixed(QByteArray("x\x16\x02\0", 4)), "'x'"},
        {"date", 12, 0, date(1589021112.25), "@1589021112.250"},
        {"dates", 12, 2, prefixed(date(1687212000) + little_double(not_a_number) + date(0)),
         "[@1687212000.000, @0.000]"},
        {"distant future", 12, 0, little_double(63113904000), "@64092211200.000"},
        {"date too far", 12, 0, little_double(1.1e11), "none"},
        {"date not finite", 12, 0, little_double(not_a_number), "none"},
        {"data", 14, 0, prefixed("\x01\x02"), "none"},
        {"type", 15, 0x48, variable(2), "'public.jpeg'"},
        {"type tree", 15, 0x4a, variable(1), "['public.jpeg', 'public.image']"},
        {"kind", 15, 0xc3, variable(1), "'Document'"},
        {"kind without English", 15, 0xc3, variable(2), "'Dokument'"},
        {"no kind", 15, 0xc3, variable(0xfeffffff), "none"},
        {"no such text", 15, 0, variable(77), "none"},
        {"no such list", 15, 2, variable(77), "none"},
        {"after all of them", 7, 0, variable(1), "1"},
    };
}

void add_values(store_writer *store)
{
    store->text("unused");
    const qint32 jpeg = qint32(store->text("public.jpeg"));
    const qint32 image = qint32(store->text("public.image"));
    const qint32 unknown = qint32(store->text("Unknown document\x16\x02"));
    const qint32 german = qint32(store->text("Dokument\x16\x02"
                                             "de"));
    const qint32 english = qint32(store->text("Document\x16\x02"
                                              "en"));
    store->list({jpeg, -1, 99, image});
    store->localized({unknown, german, english});
    store->localized({german, unknown});
    record_writer record(9000000000, 2);
    record.add(store_writer::file_name, prefixed("a"));
    for (const value_row &row : value_rows())
        record.add(store->attribute(row.name, row.type, row.flags), row.encoded);
    store->root().add(record);
}

TEST(spotlight_store, hands_out_every_value_whatever_the_shape_of_the_store)
{
    const struct
    {
        const char *name;
        packing how;
        bool beside;
        bool swapped;
        const char *map;
    } shapes[] = {
        {"plain, tables inside", packing::plain, false, false, "2mbd"},
        {"zlib, tables inside", packing::zlib, false, false, "2mbd"},
        {"frames, tables beside", packing::lz4_frames, true, false, "2mbd"},
        {"raw block", packing::lz4_block, false, false, "2mbd"},
        {"swapped ids", packing::zlib, true, true, "1mbd"},
    };
    for (const auto &shape : shapes) {
        store_writer writer;
        writer.page_packing(shape.how).tables_beside(shape.beside).swap_ids(shape.swapped);
        writer.map_signature(shape.map);
        add_values(&writer);
        const auto store = load(writer.folder());
        EXPECT_EQ(store->reasons(), QStringList()) << shape.name;
        for (const value_row &row : value_rows()) {
            SCOPED_TRACE(testing::Message() << shape.name << ": " << row.name);
            EXPECT_EQ(value_of(store.get(), QStringLiteral("a"), row.name),
                      QString::fromUtf8(row.expected));
        }
    }
}

TEST(spotlight_store, maps_public_names_to_stored_ones)
{
    store_writer writer;
    record_writer record(20, 2);
    record.add(store_writer::file_name, prefixed("a"));
    const char *const numbers[] = {
        "kMDItemLogicalSize",  "_kMDItemNodeCount", "_kMDItemOwnerUserID", "_kMDItemOwnerGroupID",
        "_kMDItemFinderLabel", "_kMDItemTypeCode",  "_kMDItemCreatorCode", "_kMDItemHidden"};
    quint64 number = 100;
    for (const char *name : numbers)
        record.add(writer.attribute(name, 7, 0x48), variable(number++));
    record.add(writer.attribute("_kMDItemFinderFlags", 7, 0), variable(0x4010));
    record.add(writer.attribute("_kMDItemIsExtensionHidden", 0, 0), variable(1));
    record.add(writer.attribute("_kMDItemCreationDate", 12, 0), date(1000));
    record.add(writer.attribute("_kMDItemContentChangeDate", 12, 0), date(2000));
    // The same name under two indexes, of different types.
    record.add(writer.attribute("kMDItemKind", 11, 0), prefixed("old"));
    record.add(writer.attribute("kMDItemKind", 11, 3), prefixed("new\x16\x02"));
    record.add(writer.attribute("kMDItemDateAdded", 12, 0x40), date(3000));
    record.add(writer.attribute("kMDItemDateAdded", 11, 0), prefixed("a text of the user's"));
    record.add(writer.attribute("kMDItemLastUsedDate", 11, 0), prefixed("another"));
    const auto store = load(writer.root().add(record).folder());

    const char *const expected =
        "kMDItemFSName='a' kMDItemFSSize=100 kMDItemFSNodeCount=101 kMDItemFSOwnerUserID=102 "
        "kMDItemFSOwnerGroupID=103 kMDItemFSLabel=104 kMDItemFSTypeCode=105 "
        "kMDItemFSCreatorCode=106 kMDItemHidden=107 kmditemhidden=none "
        "kMDItemFSFinderFlags=16400 kMDItemFSInvisible=true kMDItemFSIsExtensionHidden=true "
        "kMDItemFSCreationDate=@1000.000 kMDItemFSContentChangeDate=@2000.000 kMDItemKind='new' "
        "kMDItemDateAdded=@3000.000 kMDItemLastUsedDate=none kMDItemUsedDates=none";
    for (const QByteArray &row : QByteArray(expected).split(' ')) {
        const QByteArray name = row.left(row.indexOf('='));
        EXPECT_EQ(name + '=' + value_of(store.get(), QStringLiteral("a"), name).toUtf8(), row);
    }
}

TEST(spotlight_store, finds_a_path_by_parents_and_names_only)
{
    store_writer writer;
    writer.root().file(1, 2, "store record").file(20, 2, "Users").file(21, 20, "alice");
    writer.file(30, 21, "caf\xc3\xa9").file(31, 21, "resume\xcc\x81.txt").file(32, 21, "a/b");
    writer.file(33, 21, "Report.PDF").file(34, 21, "case").file(35, 21, "CASE");
    writer.file(36, 21, "same", 5).file(37, 21, "same", 9).file(38, 36, "old");
    writer.file(50, 51, "loop").file(51, 50, "loop").file(52, 52, "parent");
    writer.file(60, 999, "lost");
    const auto store = load(writer.folder());

    // A path and the numbers of the records found; "Case" could mean either.
    const QStringList rows =
        QString::fromUtf8(
            "=2 Users/alice=21 Users/alice/cafe\u0301=30 Users/alice/resum\u00e9.txt=31 "
            "Users/alice/RESUM\u00c9.TXT=31 Users/alice/a:b=32 "
            "users/ALICE/report.pdf=33 Users/alice/case=34 Users/alice/CASE=35 "
            "Users/alice/Case= Users/alice/same=37,36 Users/alice/same/old=38 alice= "
            "Report.PDF= loop= parent= lost= Volume= "
            "Users/alice/Report.PDF/Report.PDF=")
            .split(QLatin1Char(' '));
    for (const QString &row : rows) {
        QStringList ids;
        const QStringList names = row.section('=', 0, 0).split('/', Qt::SkipEmptyParts);
        for (const size_t record : store->index().find_path(names))
            ids += QString::number(store->index().id(record));
        EXPECT_EQ(ids.join(','), row.section('=', 1)) << row.toStdString();
    }
}

TEST(spotlight_store, takes_the_newer_record_of_the_two_files)
{
    const auto writer_of = [](const char *mark, qint64 old_time, qint64 new_time) {
        store_writer writer;
        const quint32 comment = writer.attribute("kMDItemComment", 11, 0);
        const auto add = [&](quint64 id, const char *name, qint64 time) {
            writer.add(record_writer(id, 2, time)
                           .add(store_writer::file_name, prefixed(name))
                           .add(comment, prefixed(mark)));
        };
        writer.root();
        add(20, "newer there", old_time);
        add(21, "newer here", new_time);
        add(22, "same time", 5);
        add(23 + quint64(old_time), mark, 1);
        return writer;
    };
    store_writer first = writer_of("first", 10, 20);
    store_writer second = writer_of("second", 15, 15);
    folder_files files = first.folder("store.db");
    files[".store.db"] = second.store();
    const auto store = load(files);

    EXPECT_EQ(store->index().size(), 6U);
    for (const auto &[path, expected] : {std::pair("newer there", "'second'"),
                                         {"newer here", "'first'"},
                                         {"same time", "'second'"},
                                         {"first", "'first'"},
                                         {"second", "'second'"}})
        EXPECT_EQ(value_of(store.get(), path, "kMDItemComment"), expected) << path;
}

// Two data pages with a file each, the tables inside; the second page is the one that is damaged.
enum class part { header, map, page, attributes, texts };

int offset_of(const store_writer &writer, part where)
{
    switch (where) {
    case part::header:
        return 0;
    case part::map:
        return store_writer::map_offset;
    case part::page:
        return writer.data_page_offset(1);
    default:
        return writer.table_page_offset(where == part::attributes ? 0 : 1);
    }
}

// The files that are found, of "ab".
QString files_left(const folder_files &files)
{
    const auto store = load(files);
    QString left;
    for (const QString &name : {QStringLiteral("a"), QStringLiteral("b")})
        left += store->index().find_path({name}).empty() ? QString() : name;
    return left;
}

TEST(spotlight_store, loses_only_what_is_damaged)
{
    const struct
    {
        const char *name;
        part where;
        int field;
        quint32 value;
        const char *left;
    } rows[] = {
        {"page of another kind", part::page, 12, 0x11, "a"},
        {"page without signature", part::page, 0, 0, "a"},
        {"page size zero", part::page, 4, 0, "a"},
        {"page size too large", part::page, 4, 0x100001, "a"},
        {"more bytes in use than the page has", part::page, 8, 0xffffffff, "ab"},
        {"no bytes in use", part::page, 8, 0, "a"},
        {"plain page said to be packed", part::page, 16, 100, "a"},
        {"packed page said to be LZFSE", part::page, 12, 0x2009, "ab"}, // not packed at all
        {"record longer than its page", part::page, 20, 0x7fffffff, "a"},
        {"another signature", part::header, 0, 0x12345678, ""},
        {"map behind the end", part::header, 36, 0xfffff000, ""},
        {"map longer than the file", part::header, 40, 0xffffffff, "ab"},
        {"page size zero in the header", part::header, 44, 0, ""},
        {"page size no multiple of blocks", part::header, 44, 0x4001, ""},
        {"page size of the header too large", part::header, 44, 0x200000, ""},
        {"map page size zero", part::map, 4, 0, ""},
        {"map page size huge", part::map, 4, 0xfffffff0, ""},
        {"more map entries than bytes", part::map, 8, 0xffffffff, "ab"},
        {"map entry far outside", part::map, 20 + 16 + 8, 0xffffffff, "a"},
        {"map entry named twice", part::map, 20 + 16 + 8, 5, "a"},
        {"table names itself as next page", part::texts, 20, 9, "ab"},
        {"table of attributes far outside", part::header, 48, 0xfffffff0, ""},
        {"table page of another kind", part::attributes, 12, 0x21, ""},
        {"table page without bytes in use", part::attributes, 8, 0, ""},
        {"attribute of unknown length", part::attributes, 36, 0x4c03, ""},
        {"text table lost", part::header, 52, 0xfffffff0, "ab"},
    };
    store_writer writer;
    writer.root().file(20, 2, "a").end_page().file(21, 2, "b");
    const folder_files sound = writer.folder();
    EXPECT_EQ(files_left(sound), QStringLiteral("ab"));
    for (const auto &row : rows) {
        folder_files files = sound;
        overwrite(&files["store.db"], offset_of(writer, row.where) + row.field,
                  little_u32(row.value));
        EXPECT_EQ(files_left(files), QLatin1String(row.left)) << row.name;
    }
    for (const int size : {writer.data_page_offset(1) + 24, 4096, 4095, 0})
        EXPECT_EQ(files_left({{"store.db", sound["store.db"].left(size)}}), QString()) << size;
}

TEST(spotlight_store, ends_a_record_where_it_cannot_be_understood)
{
    store_writer writer;
    const quint32 good = writer.attribute("good", 7, 0);
    const quint32 odd = writer.attribute("odd", 13, 0);
    const quint32 numbers = writer.attribute("numbers", 7, 2);
    const quint32 text = writer.attribute("text", 11, 0);
    const quint32 after = writer.attribute("after", 7, 0);
    const QByteArray huge = variable(quint64(-1));
    const QByteArray next = variable(1) + variable(5);

    const struct
    {
        const char *name;
        QByteArray tail; // behind the attribute `good`
        const char *after;
    } rows[] = {
        {"sound", variable(after - good) + variable(5), "5"},
        {"end mark", variable(0) + variable(after - good) + variable(5), "none"},
        {"long end mark", variable(0xffffffff) + variable(5), "none"},
        {"unknown attribute", variable(50) + variable(5), "none"},
        {"increment that wraps", huge + variable(after - good) + variable(5), "none"},
        {"type of unknown length", variable(odd - good) + variable(after - odd) + variable(5),
         "none"},
        {"more numbers than bytes", variable(numbers - good) + huge + next, "none"},
        {"text longer than the record", variable(text - good) + huge + next, "none"},
        {"odd count of number bytes",
         variable(numbers - good) + variable(9) + variable(3) + variable(after - numbers) +
             variable(5),
         "5"},
    };
    writer.root();
    quint64 id = 100;
    for (const auto &row : rows)
        writer.add(record_writer(id++, 2)
                       .add(store_writer::file_name, prefixed(row.name))
                       .add(good, variable(3))
                       .raw(row.tail));
    const auto store = load(writer.folder());
    for (const auto &row : rows) {
        EXPECT_EQ(value_of(store.get(), QString::fromLatin1(row.name), "good"), QStringLiteral("3"))
            << row.name;
        EXPECT_EQ(value_of(store.get(), QString::fromLatin1(row.name), "after"),
                  QString::fromLatin1(row.after))
            << row.name;
    }
}

// Replaces the content of the last data page.
folder_files with_packed_page(quint32 type, quint32 plain_size, const QByteArray &content)
{
    store_writer writer;
    writer.root().file(20, 2, "sound").end_page().file(21, 2, "forged");
    folder_files files = writer.folder();
    overwrite(&files["store.db"], writer.data_page_offset(1), page(type, plain_size, content));
    return files;
}

TEST(spotlight_store, survives_pages_that_are_packed_wrongly)
{
    const QByteArray record = record_writer(21, 2).add(1, prefixed("forged")).bytes(false);
    const QByteArray records = little_u32(quint32(record.size())) + record;
    const auto plain_size = quint32(records.size()) + 20;
    const QByteArray zeros = pack(QByteArray(8 * 1024 * 1024, '\0'), packing::zlib);
    const QByteArray frame = "bv4-" + little_u32(quint32(records.size())) + records;
    QByteArray bad_sum = pack(records, packing::zlib);
    bad_sum[bad_sum.size() - 1] = char(bad_sum.at(bad_sum.size() - 1) ^ 1);

    const struct
    {
        const char *name;
        quint32 type;
        quint32 plain_size;
        QByteArray content;
        bool found;
    } rows[] = {
        {"zlib", 0x09, plain_size, pack(records, packing::zlib), true},
        {"zlib said to be longer", 0x09, 0xffffffff, pack(records, packing::zlib), true},
        {"zlib said to be shorter", 0x09, plain_size - 1, pack(records, packing::zlib), false},
        {"zlib said to hold nothing", 0x09, 1, pack(records, packing::zlib), false},
        {"zlib with a wrong sum", 0x09, plain_size, bad_sum, false},
        {"zlib bomb", 0x09, 0xffffffff, zeros, false},
        {"frames end in zeros", 0x1009, plain_size, frame + QByteArray(4, '\0'), true},
        {"frames end in rubbish", 0x1009, plain_size, frame + "bv42", true},
        {"second frame too long", 0x1009, plain_size,
         frame + "bv41" + little_u32(0xffffffff) + little_u32(4) + "abcd", true},
        {"frame above the announced size", 0x1009, plain_size - 1, frame, false},
        {"match before the start", 0x1009, 200,
         "bv41" + little_u32(40) + little_u32(4) + QByteArray("\x0f\x05\x00\x10", 4), false},
        {"match at distance zero", 0x1009, 200,
         QByteArray("\x1f"
                    "a\x00\x00\x10",
                    5),
         false},
        {"raw block", 0x1009, plain_size, pack(records, packing::lz4_block), true},
        {"raw block cut", 0x1009, plain_size, pack(records, packing::lz4_block).chopped(2), false},
    };
    for (const auto &row : rows) {
        const auto store = load(with_packed_page(row.type, row.plain_size, row.content));
        EXPECT_EQ(store->index().find_path({QStringLiteral("sound")}).size(), 1U) << row.name;
        EXPECT_EQ(!store->index().find_path({QStringLiteral("forged")}).empty(), row.found)
            << row.name;
    }
}

// Each block starts a page that claims a megabyte: 200 times more to read than there is.
TEST(spotlight_store, gives_up_on_pages_that_overlap)
{
    store_writer writer;
    writer.root().file(20, 2, "a").end_page();
    for (quint64 id = 100; id < 300; ++id)
        writer.file(id, 2, "b").end_page();
    folder_files files = writer.page_bytes(0x1000).folder();
    for (int number = 1; number <= 200; ++number)
        overwrite(&files["store.db"], writer.data_page_offset(number) + 4, little_u32(0x100000));
    const auto store = load(files);
    EXPECT_EQ(store->reasons(),
              QStringList(
                  QStringLiteral("S/store.db: larger than an index can be, not read to its end")));
    EXPECT_EQ(store->index().find_path({QStringLiteral("a")}).size(), 1U);
    EXPECT_LT(store->index().size(), 10U);
}

TEST(spotlight_store, says_why_it_has_no_answer)
{
    store_writer hashed;
    for (quint64 id = 0x0d15ea5e00000002; id < 0x0d15ea5e00000009; ++id)
        hashed.file(id, 2, "a");
    store_writer packed;
    packed.page_packing(packing::lzfse).root().file(20, 2, "a");
    store_writer nameless;
    folder_files without_names = nameless.root().file(20, 2, "a").folder();
    without_names["store.db"][nameless.table_page_offset(0)] = 'x';
    store_writer beside;
    folder_files alone = beside.tables_beside(true).root().file(20, 2, "a").folder();
    alone = {{"store.db", alone["store.db"]}, {".store.db", alone["store.db"]}};
    const struct
    {
        const char *name;
        folder_files files;
        QString reason;
    } rows[] = {
        {"old version",
         {{"store.db", "7tsd" + QByteArray(8192, '\0')}},
         QStringLiteral("S/store.db: old version of the index, not read")},
        {"another file",
         {{".store.db", "hello"}},
         QStringLiteral("S/.store.db: not an index, or a damaged header")},
        {"hashed ids", hashed.folder(), QStringLiteral("S: not the index of a volume's files")},
        {"LZFSE", packed.folder(),
         QStringLiteral("S/store.db: 1 pages packed with LZFSE, not read")},
        {"table of names damaged", without_names,
         QStringLiteral("S/store.db: no attribute names were found, index not used")},
        {"stores without their tables", alone,
         QStringLiteral("S: no attribute names were found, index not used")},
        {"no store", {}, QString()},
    };
    for (const auto &row : rows) {
        formats::spotlight_budget budget;
        spotlight_store store(std::make_unique<evidence::memory_byte_folder>(row.files),
                              QStringLiteral("S"), &budget);
        EXPECT_FALSE(store.load()) << row.name;
        EXPECT_EQ(store.reasons().join(QLatin1Char('|')), row.reason) << row.name;
        EXPECT_TRUE(store.index().find_path({QStringLiteral("a")}).empty()) << row.name;
    }
}

TEST(spotlight_store, reads_side_tables_as_far_as_they_are_sound)
{
    constexpr int cut = -1; // the file ends there
    const struct
    {
        const char *name;
        const char *file;
        int offset;
        qint64 value;
        const char *type; // 'x' is text 1, 'y' text 2
        int long_list;
        const char *reason = "";
    } rows[] = {
        {"header lost", "2.map.header", 0, cut, "'y'", 40},
        {"header of another file", "2.map.header", 0, 7, "'y'", 40},
        {"fewer slots in use", "2.map.header", 28, 2, "none", 0},
        {"slot deleted", "2.map.offsets", 8, 1, "none", 0},
        {"slot outside", "2.map.offsets", 8, 0x7fffffff, "none", 0},
        {"no more slots", "2.map.offsets", 8, 0, "none", 0},
        {"offsets cut", "2.map.offsets", 11, cut, "none", 0},
        {"data cut", "2.map.data", 10, cut, "none", 0},
        {"fewer data bytes in use", "2.map.header", 20, 10, "none", 0},
        {"length without an end", "2.map.data", 8, 0xffffffff, "none", 0},
        {"text of another length", "2.map.data", 8, 0x00007902, "'y'", 40},
        {"lists lost", "4.map.data", 0, cut, "'y'", 0, "S: 1 damaged tables of names"},
        {"types lost", "1.map.offsets", 0, cut, "no record", 0,
         "S: no attribute names were found, index not used"},
    };
    for (const auto &row : rows) {
        store_writer writer;
        writer.tables_beside(true).text("x");
        const qint32 y = qint32(writer.text("y"));
        writer.list(std::vector<qint32>(40, y)); // its lengths need two bytes in both codings
        const quint32 type = writer.attribute("type", 15, 0);
        const quint32 list = writer.attribute("list", 15, 2);
        writer.root().add(record_writer(20, 2)
                              .add(store_writer::file_name, prefixed("a"))
                              .add(type, variable(2))
                              .add(list, variable(1)));
        folder_files files = writer.folder();
        QByteArray &damaged = files[QStringLiteral("dbStr-") + QLatin1String(row.file)];
        if (row.value == cut)
            damaged.truncate(row.offset);
        else
            overwrite(&damaged, row.offset, little_u32(quint32(row.value)));
        const auto store = load(files);
        EXPECT_EQ(value_of(store.get(), QStringLiteral("a"), "type"), QLatin1String(row.type))
            << row.name;
        EXPECT_EQ(value_of(store.get(), QStringLiteral("a"), "list").count(QLatin1Char('y')),
                  row.long_list)
            << row.name;
        EXPECT_EQ(store->reasons().join(QLatin1Char('|')), QLatin1String(row.reason)) << row.name;
    }
}

TEST(spotlight_cursor, reads_both_variable_forms)
{
    const struct
    {
        const char *name;
        QByteArray bytes;
        bool leb128;
        quint64 expected;
        int left; // -1: refused
    } rows[] = {
        {"one byte", "\x24", false, 0x24, 0},
        {"two bytes", "\x80\x24", false, 0x24, 0},
        {"three bytes", QByteArray("\xc1\x00\x0d", 3), false, 0x1000d, 0},
        {"four bytes", QByteArray("\xe8\x00\x01\x00", 4), false, 0x8000100, 0},
        {"five bytes", "\xf0\xfe\xff\xff\xff!", false, 0xfeffffff, 1},
        {"eight bytes", "\xfe\x01\x02\x03\x04\x05\x06\x07", false, 0x01020304050607, 0},
        {"nine bytes", QByteArray(9, '\xff'), false, quint64(-1), 0},
        {"cut", QByteArray(8, '\xff'), false, 0, -1},
        {"none", "", false, 0, -1},
        {"low group first", "\xa3\x01\x80", true, 163, 1},
        {"all bits", QByteArray(9, '\xff') + '\x01', true, quint64(-1), 0},
        {"too many bits", QByteArray(9, '\xff') + '\x02', true, 0, -1},
        {"without an end", QByteArray(11, '\x80'), true, 0, -1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        formats::spotlight_cursor cursor({row.bytes.constData(), size_t(row.bytes.size())});
        quint64 value = 0;
        const bool read = row.leb128 ? cursor.read_leb128(&value) : cursor.read_varint(&value);
        EXPECT_EQ(read, row.left >= 0);
        EXPECT_EQ(value, row.expected);
        EXPECT_EQ(cursor.left(), quint64(row.left >= 0 ? row.left : row.bytes.size()));
    }
}

} // namespace
