// Builds AppleDouble files as archives hold them. Every field can be forged.
#pragma once

#include <QByteArray>
#include <QtEndian>

#include <cstring>
#include <optional>
#include <utility>
#include <vector>

template <typename Number> QByteArray big_endian(Number number)
{
    QByteArray bytes(sizeof number, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

// 32 bytes of the Finder.
inline QByteArray finder_bytes(quint16 flags, quint32 date_added)
{
    return QByteArray(8, '\0') + big_endian(flags) + QByteArray(10, '\0') + big_endian(date_added) +
           QByteArray(8, '\0');
}

struct apple_double_builder
{
    QByteArray finder_info = QByteArray(32, '\0');
    std::vector<std::pair<QByteArray, QByteArray>> attributes; // name, value

    // Forged values. Fields that are not set here are correct.
    quint32 magic = 0x00051607;
    quint32 version = 0x00020000;
    quint32 block_magic = 0x41545452;
    std::optional<quint16> entry_count;
    std::optional<quint32> finder_offset;
    std::optional<quint32> finder_length;
    std::optional<quint32> resource_offset;
    std::optional<quint32> total_size;
    std::optional<quint32> values_length;
    std::optional<quint16> attribute_count;
    std::optional<quint32> last_value_offset;
    std::optional<quint8> last_name_length;

    [[nodiscard]] QByteArray bytes() const
    {
        constexpr quint32 header_end = 120;
        quint32 values_start = header_end;
        for (const auto &attribute : attributes)
            values_start += entry_size(attribute.first);
        QByteArray entries;
        QByteArray values;
        for (const auto &[name, value] : attributes) {
            const bool is_last = &name == &attributes.back().first;
            const quint32 offset = values_start + static_cast<quint32>(values.size());
            const auto name_length = static_cast<quint8>(name.size() + 1);
            QByteArray entry = big_endian(is_last ? last_value_offset.value_or(offset) : offset) +
                               big_endian(static_cast<quint32>(value.size())) +
                               big_endian(quint16{0});
            entry +=
                static_cast<char>(is_last ? last_name_length.value_or(name_length) : name_length);
            entries +=
                (entry + name + '\0').leftJustified(static_cast<int>(entry_size(name)), '\0');
            values += value;
        }
        const quint32 end = values_start + static_cast<quint32>(values.size());
        const QByteArray table =
            entry(9, finder_offset.value_or(50), finder_length.value_or(end - 50)) +
            entry(2, resource_offset.value_or(end), 0);
        const QByteArray block =
            big_endian(block_magic) + big_endian(quint32{0}) +
            big_endian(total_size.value_or(end)) + big_endian(values_start) +
            big_endian(values_length.value_or(static_cast<quint32>(values.size()))) +
            QByteArray(14, '\0') +
            big_endian(attribute_count.value_or(static_cast<quint16>(attributes.size())));
        return big_endian(magic) + big_endian(version) + "Mac OS X        " +
               big_endian(entry_count.value_or(2)) + table + finder_info + QByteArray(2, '\0') +
               block + entries + values;
    }

private:
    static QByteArray entry(quint32 type, quint32 offset, quint32 length)
    {
        return big_endian(type) + big_endian(offset) + big_endian(length);
    }
    static quint32 entry_size(const QByteArray &name)
    {
        return (11 + static_cast<quint32>(name.size()) + 1 + 3) / 4 * 4;
    }
};
