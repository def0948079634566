// Lists that would cost much time or memory if their numbers were trusted.
#pragma once

#include "samples/binary_list_builder.h"
#include "samples/forged_source.h"

#include <QRandomGenerator>

constexpr int mebibyte = 1024 * 1024;
constexpr int many = 1'000'000;

inline QByteArray random_bytes(int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(bytes.data()), count / 4);
    return bytes;
}

inline QByteArray deep_xml()
{
    return xml_dictionary("<key>Items</key>" + QByteArray("<array>").repeated(many) +
                          QByteArray("</array>").repeated(many));
}

// As many of these pieces as fit into a list of that size.
inline QByteArray repeated_xml(const char *start, const char *piece, int size_bytes)
{
    const QByteArray repeated(piece);
    return start + repeated.repeated(size_bytes / repeated.size());
}

inline QByteArray many_values()
{
    return repeated_xml("<array>", "<true/>", 31 * mebibyte) + "</array>";
}

inline QByteArray many_keys()
{
    return repeated_xml("<array>", "<key/> ", 20 * mebibyte) + "<key><![CDATA[]]></key></array>";
}

inline QByteArray many_pieces_of_text()
{
    return repeated_xml("<string>", "<![CDATA[]]>x", 31 * mebibyte) + "</string>";
}

inline QByteArray many_values_in_utf16()
{
    QByteArray wide;
    for (const char letter : repeated_xml("<array>", "<true/>", 7 * mebibyte))
        wide += QByteArray(1, '\0') + letter;
    return wide;
}

// Each array holds the next one. Made without a builder, which would keep memory that is measured.
inline QByteArray deep_binary()
{
    const auto number = [](int value) { return binary_list_builder::number(quint64(value), 4); };
    QByteArray list("bplist00");
    list.reserve(16 * mebibyte);
    list += '\xd1' + number(many) + number(1); // the first, a dictionary: 9 bytes
    QByteArray table = number(8);
    table.reserve(4 * mebibyte);
    for (int object = 1; object < many; ++object) {
        table += number(list.size());
        list += '\xa1' + number(object + 1);
    }
    table += number(list.size());
    list += "\x55Items";
    const int table_offset = list.size();
    list += table + QByteArray(6, '\0') + QByteArray(2, '\4');
    return list + binary_list_builder::number(many + 1, 8) + QByteArray(8, '\0') +
           binary_list_builder::number(quint64(table_offset), 8);
}

inline QByteArray claiming_objects()
{
    binary_list_builder builder;
    builder.forged_object_count = quint64(1) << 60;
    return builder.list(quint64(builder.dictionary({})));
}

// Values that claim 2^60 bytes or entries.
inline QByteArray claiming_values()
{
    binary_list_builder builder;
    constexpr quint64 claimed = quint64(1) << 60;
    std::vector<std::pair<int, int>> entries;
    for (const auto &[key, type] : {std::pair("Nickname", 0x5), std::pair("Hostname", 0x6),
                                    std::pair("Host", 0xd), std::pair("Items", 0xa)})
        entries.emplace_back(builder.text(key),
                             builder.raw(binary_list_builder::head(type, claimed)));
    return builder.list(quint64(builder.dictionary(entries)));
}

inline QByteArray long_text()
{
    return xml_dictionary("<key>Nickname</key><string>" + QByteArray(31 * mebibyte, 'x') +
                          "</string>");
}

inline QByteArray queue_of_path(const QByteArray &path)
{
    return xml_dictionary("<key>Host</key><dict/><key>Items</key><array><dict><key>Local "
                          "Dictionary</key><dict><key>Path</key><string>" +
                          path + "</string></dict></dict></array>");
}

inline QByteArray long_path()
{
    return queue_of_path("~" + QByteArray("/Documents/..").repeated(2 * mebibyte));
}
