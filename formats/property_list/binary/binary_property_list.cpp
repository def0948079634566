#include "formats/property_list/binary/binary_property_list.h"

#include "formats/property_list/base/class_names.h"
#include "formats/property_list/binary/binary_list_trailer.h"
#include "formats/property_list/base/property_list_limits.h"
#include "text/dates/calendar.h"
#include "text/dates/iso_8601.h"
#include "text/foundation_numbers.h"

#include <QLatin1String>
#include <QLocale>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace formats {

namespace {

// The upper half of an object's first byte.
enum object_type : uchar {
    single_type = 0x0, // the lower half tells which
    integer_type = 0x1,
    real_type = 0x2,
    date_type = 0x3,
    data_type = 0x4,
    ascii_type = 0x5,
    utf16_type = 0x6,
    array_type = 0xa,
    dictionary_type = 0xd,
};

constexpr uchar false_marker = 0x08;
constexpr uchar true_marker = 0x09;
constexpr uchar date_marker = 0x33;

double read_double(const uchar *at)
{
    const quint64 bits = qFromBigEndian<quint64>(at);
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

double read_float(const uchar *at)
{
    const quint32 bits = qFromBigEndian<quint32>(at);
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return static_cast<double>(value);
}

bool is_ascii(const uchar *at, quint64 count)
{
    constexpr quint64 high_bits = 0x8080808080808080;
    quint64 seen = 0;
    for (; count >= sizeof seen; count -= sizeof seen, at += sizeof seen)
        seen |= qFromUnaligned<quint64>(at);
    for (; count > 0; --count, ++at)
        seen |= *at;
    return (seen & high_bits) == 0;
}

// Whether numbers of `bytes` bytes reach beyond `value`.
bool reaches_beyond(quint64 bytes, quint64 value)
{
    return bytes >= sizeof(quint64) || quint64(1) << (8 * bytes) > value;
}

} // namespace

bool binary_property_list::is_binary(const QByteArray &bytes)
{
    return bytes.startsWith("bplist0");
}

bool binary_property_list::load(const QByteArray &bytes)
{
    clear();
    const auto trailer = trailer_of(bytes);
    if (!is_binary(bytes) || !trailer || trailer->table_offset <= binary_list_header_bytes)
        return false;
    const auto *const begin = reinterpret_cast<const uchar *>(bytes.constData());
    offset_bytes_ = trailer->offset_bytes;
    reference_bytes_ = trailer->reference_bytes;
    object_count_ = trailer->object_count;
    table_offset_ = trailer->table_offset;
    // The table fills the space up to the trailer.
    const quint64 table_bytes =
        static_cast<quint64>(bytes.size()) - binary_list_trailer_bytes - table_offset_;
    if (table_bytes % offset_bytes_ != 0 || table_bytes / offset_bytes_ != object_count_)
        return false;
    if (!reaches_beyond(reference_bytes_, object_count_) ||
        !reaches_beyond(offset_bytes_, table_offset_))
        return false;
    const uchar *const table = begin + table_offset_;
    for (quint64 index = 0; index < object_count_; ++index) {
        if (big_endian_number(table + index * offset_bytes_, offset_bytes_) >= table_offset_)
            return false;
    }
    const quint64 root =
        big_endian_number(table + trailer->top_object * offset_bytes_, offset_bytes_);
    if (root < binary_list_header_bytes)
        return false;
    bytes_ = begin;
    root_ = root;
    work_left_ = max_list_work;
    return true;
}

void binary_property_list::clear()
{
    bytes_ = nullptr;
    root_ = 0;
    forget_left_out();
}

bool binary_property_list::fits(quint64 offset, quint64 count, quint64 item_bytes) const
{
    return offset <= table_offset_ && count <= (table_offset_ - offset) / item_bytes;
}

bool binary_property_list::spend(quint64 work) const
{
    if (work > work_left_) {
        note_spent();
        return false;
    }
    work_left_ -= work;
    return true;
}

bool binary_property_list::read_count(quint64 *count, quint64 *content_offset) const
{
    if (!fits(*content_offset, 1, 1))
        return false;
    const uchar marker = bytes_[*content_offset];
    const quint64 number_bytes = quint64(1) << (marker & 0x0f);
    if (marker >> 4 != integer_type || number_bytes > 8 ||
        !fits(*content_offset + 1, 1, number_bytes))
        return false;
    *count = big_endian_number(bytes_ + *content_offset + 1, number_bytes);
    *content_offset += 1 + number_bytes;
    return true;
}

binary_property_list::object binary_property_list::scalar_at(uchar marker,
                                                             quint64 content_offset) const
{
    object found;
    found.type = marker >> 4;
    found.content = bytes_ + content_offset;
    if (marker == false_marker || marker == true_marker) {
        found.kind = value_kind::boolean;
        found.count = marker == true_marker ? 1 : 0;
        return found;
    }
    found.count = quint64(1) << (marker & 0x0f);
    if (!fits(content_offset, found.count, 1))
        return {};
    const bool is_integer = found.type == integer_type && found.count <= 16;
    const bool is_real = found.type == real_type && (found.count == 4 || found.count == 8);
    if (is_integer || is_real)
        found.kind = value_kind::number;
    else if (marker == date_marker)
        found.kind = value_kind::date;
    return found;
}

binary_property_list::object binary_property_list::object_at(quint64 offset) const
{
    if (bytes_ == nullptr || offset < binary_list_header_bytes || !fits(offset, 1, 1))
        return {};
    const uchar marker = bytes_[offset];
    object found;
    found.type = marker >> 4;
    if (found.type <= date_type)
        return scalar_at(marker, offset + 1);
    quint64 content_offset = offset + 1;
    found.count = marker & 0x0f;
    if (found.count == 0x0f && !read_count(&found.count, &content_offset))
        return {};
    found.content = bytes_ + content_offset;
    const auto as = [&](value_kind kind, quint64 item_bytes) {
        found.kind = fits(content_offset, found.count, item_bytes) ? kind : value_kind::absent;
    };
    const auto as_container = [&](value_kind kind, quint64 entry_bytes) {
        as(kind, entry_bytes);
        if (found.kind == value_kind::absent || found.count <= max_container_count)
            return;
        found.kind = value_kind::absent;
        note_left_out();
    };
    switch (found.type) {
    case data_type:
        as(value_kind::data, 1);
        break;
    case ascii_type:
        as(value_kind::text, 1);
        if (found.kind == value_kind::text &&
            (!spend(found.count) || !is_ascii(found.content, found.count)))
            found.kind = value_kind::absent;
        break;
    case utf16_type:
        as(value_kind::text, 2);
        break;
    case array_type:
        as_container(value_kind::array, reference_bytes_);
        break;
    case dictionary_type:
        as_container(value_kind::dictionary, 2 * reference_bytes_);
        break;
    default:
        break;
    }
    return found;
}

quint64 binary_property_list::referenced_offset(const uchar *reference) const
{
    const quint64 index = big_endian_number(reference, reference_bytes_);
    if (index >= object_count_)
        return 0;
    return big_endian_number(bytes_ + table_offset_ + index * offset_bytes_, offset_bytes_);
}

value_kind binary_property_list::kind(property_list_node node) const
{
    return object_at(node).kind;
}

QString binary_property_list::class_name(property_list_node node) const
{
    return foundation_class_name(kind(node));
}

QString binary_property_list::text(property_list_node node) const
{
    const object found = object_at(node);
    if (found.kind != value_kind::text || !spend(found.count))
        return {};
    // One more than allowed tells that there are more.
    const int length = static_cast<int>(std::min<quint64>(found.count, max_text_units + 1));
    if (found.type == ascii_type)
        return within_limit(QLatin1String(reinterpret_cast<const char *>(found.content), length));
    QString text(length, Qt::Uninitialized);
    qFromBigEndian<quint16>(found.content, length, text.data());
    return within_limit(text);
}

double binary_property_list::double_value(property_list_node node) const
{
    const object found = object_at(node);
    if (found.kind == value_kind::text)
        return text::leading_double(text(node));
    if (found.kind == value_kind::boolean)
        return static_cast<double>(found.count);
    if (found.kind != value_kind::number)
        return 0;
    if (found.type == real_type)
        return found.count == 4 ? read_float(found.content) : read_double(found.content);
    if (found.count < 8)
        return static_cast<double>(big_endian_number(found.content, found.count));
    const quint64 low = big_endian_number(found.content + found.count - 8, 8);
    if (found.count == 8)
        return static_cast<double>(static_cast<qint64>(low));
    const auto high = static_cast<qint64>(big_endian_number(found.content, 8));
    // A small negative number: its two halves would cancel each other out and lose digits.
    if (high == -1 && static_cast<qint64>(low) < 0)
        return static_cast<double>(static_cast<qint64>(low));
    constexpr double high_unit = 18446744073709551616.0;
    return static_cast<double>(high) * high_unit + static_cast<double>(low);
}

double binary_property_list::seconds_since_reference_date(property_list_node node) const
{
    const object found = object_at(node);
    return found.kind == value_kind::date ? read_double(found.content) : 0;
}

bool binary_property_list::is_floating(property_list_node node) const
{
    const object found = object_at(node);
    return found.kind == value_kind::number && found.type == real_type;
}

qint64 binary_property_list::integer_value(property_list_node node) const
{
    const object found = object_at(node);
    if (found.kind == value_kind::boolean)
        return static_cast<qint64>(found.count);
    if (found.kind != value_kind::number)
        return 0;
    if (found.type == real_type)
        return text::truncated_to_int64(double_value(node));
    const quint64 used_bytes = std::min<quint64>(found.count, 8);
    return static_cast<qint64>(
        big_endian_number(found.content + found.count - used_bytes, used_bytes));
}

int binary_property_list::count(property_list_node node) const
{
    const object found = object_at(node);
    const bool is_container =
        found.kind == value_kind::array || found.kind == value_kind::dictionary;
    return is_container ? static_cast<int>(found.count) : 0;
}

bool binary_property_list::is_key(quint64 offset, const QString &key) const
{
    if (offset < binary_list_header_bytes || !fits(offset, 1, 1))
        return false;
    // Decides most cases by the short form of the length, before anything else is looked at.
    const uchar marker = bytes_[offset];
    const auto length = static_cast<quint64>(key.size());
    const bool is_short = (marker & 0x0f) != 0x0f;
    if (is_short && (marker & 0x0f) != length)
        return false;
    if (marker >> 4 != ascii_type && marker >> 4 != utf16_type)
        return false;
    const object found = object_at(offset);
    if (found.kind != value_kind::text || found.count != length)
        return false;
    if (found.type == ascii_type) {
        const auto *const begin = reinterpret_cast<const char *>(found.content);
        return key == QLatin1String(begin, static_cast<int>(length));
    }
    for (quint64 index = 0; index < length; ++index) {
        if (key[static_cast<int>(index)].unicode() !=
            qFromBigEndian<quint16>(found.content + 2 * index))
            return false;
    }
    return true;
}

bool binary_property_list::look_up(property_list_node dictionary, const QString &key,
                                   property_list_node *found) const
{
    const object container = object_at(dictionary);
    if (container.kind != value_kind::dictionary || !spend(container.count * compared_key_work))
        return false;
    const uchar *const keys = container.content;
    const uchar *const values = keys + container.count * reference_bytes_;
    for (quint64 index = 0; index < container.count; ++index) {
        if (!is_key(referenced_offset(keys + index * reference_bytes_), key))
            continue;
        const quint64 value = referenced_offset(values + index * reference_bytes_);
        if (value == 0)
            return false;
        *found = value;
        return true;
    }
    return false;
}

bool binary_property_list::element(property_list_node array, int index,
                                   property_list_node *found) const
{
    const object container = object_at(array);
    if (container.kind != value_kind::array || index < 0 ||
        static_cast<quint64>(index) >= container.count)
        return false;
    const quint64 value =
        referenced_offset(container.content + static_cast<quint64>(index) * reference_bytes_);
    if (value == 0)
        return false;
    *found = value;
    return true;
}

void binary_property_list::visit_entries(property_list_node dictionary,
                                         const entry_visitor &visit) const
{
    const object container = object_at(dictionary);
    if (container.kind != value_kind::dictionary)
        return;
    const uchar *const keys = container.content;
    const uchar *const values = keys + container.count * reference_bytes_;
    for (quint64 index = 0; index < container.count; ++index) {
        if (!spend(compared_key_work))
            return;
        const QString key = text(referenced_offset(keys + index * reference_bytes_));
        if (!visit(key, referenced_offset(values + index * reference_bytes_)))
            return;
    }
}

QString binary_property_list::literal(property_list_node scalar) const
{
    const object found = object_at(scalar);
    switch (found.kind) {
    case value_kind::boolean:
        return found.count == 1 ? QStringLiteral("true") : QStringLiteral("false");
    case value_kind::date:
        return text::iso_8601_utc(seconds_since_reference_date(scalar) +
                                  double(text::seconds_1970_to_2001));
    case value_kind::number:
        break;
    default:
        return {};
    }
    constexpr quint64 largest_plain_bytes = 8;
    if (found.type == real_type || found.count > largest_plain_bytes)
        return QString::number(double_value(scalar), 'g', QLocale::FloatingPointShortest);
    // Only a number of eight bytes has a sign.
    return QString::number(integer_value(scalar));
}

QByteArray binary_property_list::data(property_list_node node) const
{
    const object found = object_at(node);
    if (found.kind != value_kind::data || !spend(found.count))
        return {};
    return QByteArray(reinterpret_cast<const char *>(found.content), static_cast<int>(found.count));
}

} // namespace formats
