// Builds binary property lists object by object. Every field can be forged.
#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

class binary_list_builder
{
public:
    // Sizes of offsets and references in bytes.
    explicit binary_list_builder(int offset_bytes = 2, int reference_bytes = 1)
        : offset_bytes_(offset_bytes)
        , reference_bytes_(reference_bytes)
    {
    }

    // Each adds an object and returns its index.
    int raw(const QByteArray &object)
    {
        objects_.push_back(object);
        return static_cast<int>(objects_.size()) - 1;
    }
    int text(const char *ascii) { return raw(head(0x5, qstrlen(ascii)) + ascii); }
    int wide_text(const QString &text)
    {
        QByteArray object = head(0x6, static_cast<quint64>(text.size()));
        for (const QChar unit : text)
            object += number(unit.unicode(), 2);
        return raw(object);
    }
    int integer(quint64 value, int bytes)
    {
        int power = 0;
        while (1 << power < bytes)
            ++power;
        return raw(QByteArray(1, static_cast<char>(0x10 | power)) + number(value, bytes));
    }
    int array(const std::vector<int> &elements)
    {
        return raw(head(0xa, elements.size()) + references(elements));
    }
    int dictionary(const std::vector<std::pair<int, int>> &entries)
    {
        std::vector<int> keys;
        std::vector<int> values;
        for (const auto &[key, value] : entries) {
            keys.push_back(key);
            values.push_back(value);
        }
        return raw(head(0xd, entries.size()) + references(keys) + references(values));
    }

    // The start of an object: its type and a count.
    static QByteArray head(int type, quint64 count)
    {
        const auto first = static_cast<char>(type << 4);
        if (count < 15)
            return QByteArray(1, static_cast<char>(first | static_cast<char>(count)));
        return QByteArray(1, static_cast<char>(first | 0x0f)) + '\x13' + number(count, 8);
    }
    // Big-endian; bytes above the eighth are zero.
    static QByteArray number(quint64 value, int bytes)
    {
        QByteArray written(bytes, '\0');
        for (int index = bytes - 1; index >= 0 && value != 0; --index, value >>= 8)
            written[index] = static_cast<char>(value & 0xff);
        return written;
    }

    // Forged values of the trailer. Fields that are not set here are correct.
    std::optional<quint64> forged_object_count;
    std::optional<quint64> forged_table_offset;
    std::optional<int> forged_offset_bytes;
    std::optional<int> forged_reference_bytes;
    std::optional<quint64> forged_first_offset; // of object 0

    [[nodiscard]] QByteArray list(quint64 top) const
    {
        QByteArray bytes("bplist00");
        QByteArray table;
        for (const QByteArray &object : objects_) {
            const auto offset = static_cast<quint64>(bytes.size());
            const bool is_first = table.isEmpty();
            table +=
                number(is_first ? forged_first_offset.value_or(offset) : offset, offset_bytes_);
            bytes += object;
        }
        const auto table_offset = static_cast<quint64>(bytes.size());
        bytes += table + QByteArray(6, '\0');
        bytes += static_cast<char>(forged_offset_bytes.value_or(offset_bytes_));
        bytes += static_cast<char>(forged_reference_bytes.value_or(reference_bytes_));
        bytes += number(forged_object_count.value_or(objects_.size()), 8);
        bytes += number(top, 8);
        return bytes + number(forged_table_offset.value_or(table_offset), 8);
    }

private:
    [[nodiscard]] QByteArray references(const std::vector<int> &indexes) const
    {
        QByteArray written;
        for (const int index : indexes)
            written += number(static_cast<quint64>(index), reference_bytes_);
        return written;
    }

    int offset_bytes_;
    int reference_bytes_;
    std::vector<QByteArray> objects_;
};
