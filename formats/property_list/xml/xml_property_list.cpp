#include "formats/property_list/xml/xml_property_list.h"

#include "formats/property_list/base/class_names.h"
#include "formats/property_list/base/property_list_limits.h"
#include "text/dates/calendar.h"
#include "text/foundation_numbers.h"
#include "formats/property_list/xml/xml_list_check.h"
#include "formats/property_list/xml/xml_list_encoding.h"

#include <QByteArray>
#include <QLatin1String>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace formats {

namespace {

// Texts stand in their element itself, not in a node of their own, unless CDATA splits them. Line
// ends stay as they are.
constexpr unsigned parse_flags = pugi::parse_escapes | pugi::parse_cdata | pugi::parse_embed_pcdata;

// What keeps a text of white space alone: the quick way drops a piece beside CDATA.
unsigned white_space_flag(bool has_cdata)
{
    return has_cdata ? pugi::parse_ws_pcdata : pugi::parse_ws_pcdata_single;
}

pugi::xml_node to_node(property_list_node node)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): from_node made the number of this very pointer
    return pugi::xml_node(reinterpret_cast<pugi::xml_node_struct *>(node));
}

property_list_node from_node(pugi::xml_node node)
{
    return reinterpret_cast<property_list_node>(node.internal_object());
}

// With CDATA in the list, white space between the elements of a container has nodes of its own.
pugi::xml_node forward_to_element(pugi::xml_node node)
{
    while (node && node.type() != pugi::node_element)
        node = node.next_sibling();
    return node;
}

pugi::xml_node back_to_element(pugi::xml_node node)
{
    while (node && node.type() != pugi::node_element)
        node = node.previous_sibling();
    return node;
}

pugi::xml_node first_element(pugi::xml_node container)
{
    return forward_to_element(container.first_child());
}

pugi::xml_node next_element(pugi::xml_node element)
{
    return forward_to_element(element.next_sibling());
}

pugi::xml_node previous_element(pugi::xml_node element)
{
    return back_to_element(element.previous_sibling());
}

// Bytes from which more UTF-16 units come than a text may have, whatever a cut at their end breaks.
constexpr size_t more_than_longest_text_bytes = 3 * (size_t(max_text_units) + 2);

QString from_utf8(const char *bytes, size_t length)
{
    const QString text = QString::fromUtf8(bytes, static_cast<int>(length));
    // Qt takes a leading byte-order mark away; inside a list it is a character of the text.
    return std::strncmp(bytes, "\xef\xbb\xbf", 3) == 0 ? QChar(QChar::ByteOrderMark) + text : text;
}

QString joined_text(pugi::xml_node element)
{
    QByteArray pieces(element.value());
    for (const pugi::xml_node piece : element.children()) {
        if (static_cast<size_t>(pieces.size()) > more_than_longest_text_bytes)
            break;
        pieces += piece.value();
    }
    return from_utf8(pieces.constData(), static_cast<size_t>(pieces.size()));
}

bool is_ascii(const char *bytes, int length)
{
    return std::all_of(bytes, bytes + length, [](char byte) { return uchar(byte) < 0x80; });
}

// Compares piece by piece, so that a long text costs no more than the key.
bool has_text(pugi::xml_node element, const char *utf8_text)
{
    const auto starts_rest = [&utf8_text](const char *piece) {
        for (; *piece != '\0' && *piece == *utf8_text; ++piece)
            ++utf8_text;
        return *piece == '\0';
    };
    if (!starts_rest(element.value()))
        return false;
    for (pugi::xml_node piece = element.first_child(); piece; piece = piece.next_sibling()) {
        if (!starts_rest(piece.value()))
            return false;
    }
    return *utf8_text == '\0';
}

// Foundation makes no dictionary of this, but the reference of a keyed archive.
bool is_archive_reference(pugi::xml_node dictionary)
{
    const pugi::xml_node key = first_element(dictionary);
    if (!key || !has_text(key, "CF$UID"))
        return false;
    const pugi::xml_node value = next_element(key);
    return !next_element(value) && (value.name()[0] == 'i' || value.name()[0] == 'r');
}

// The only names are those that the check lets through.
value_kind kind_of(pugi::xml_node element)
{
    const char *const name = element.name();
    switch (name[0]) {
    case 's':
    case 'k':
        return value_kind::text;
    case 'i':
    case 'r':
        return value_kind::number;
    case 't':
    case 'f':
        return value_kind::boolean;
    case 'a':
        return value_kind::array;
    case 'd':
        break;
    default:
        return value_kind::absent;
    }
    if (name[1] == 'a')
        return name[3] == 'e' ? value_kind::date : value_kind::data;
    return is_archive_reference(element) ? value_kind::absent : value_kind::dictionary;
}

bool look_up_in_place(pugi::xml_node dictionary, const QString &key, property_list_node *found)
{
    const QByteArray utf8_key = key.toUtf8();
    pugi::xml_node value = back_to_element(dictionary.last_child());
    while (value) {
        const pugi::xml_node candidate = previous_element(value);
        if (has_text(candidate, utf8_key.constData())) {
            *found = from_node(value);
            return true;
        }
        value = previous_element(candidate);
    }
    return false;
}

struct whole_number
{
    quint64 magnitude = 0;
    bool is_negative = false;
};

whole_number read_whole_number(const char *written)
{
    const auto skip_space = [&written] { written += std::strspn(written, " \t\r\n"); };
    whole_number number;
    skip_space();
    if (*written == '-' || *written == '+') {
        number.is_negative = *written == '-';
        ++written;
        skip_space();
    }
    const bool is_hexadecimal = written[0] == '0' && (written[1] == 'x' || written[1] == 'X');
    // Neither knows a locale.
    number.magnitude = std::strtoull(written, nullptr, is_hexadecimal ? 16 : 10);
    return number;
}

double read_real(const char *written)
{
    const bool is_negative = *written == '-';
    const char *const name = written + (is_negative || *written == '+' ? 1 : 0);
    if (*name == 'i' || *name == 'I') {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return is_negative ? -infinity : infinity;
    }
    if (*name == 'n' || *name == 'N')
        return std::numeric_limits<double>::quiet_NaN();
    return text::leading_double(QString::fromLatin1(written));
}

double read_date(const char *written)
{
    const bool is_negative = *written == '-';
    if (is_negative)
        ++written;
    qint64 fields[6] = {};
    for (qint64 &field : fields) {
        char *end = nullptr;
        field = std::strtoll(written, &end, 10);
        written = end + 1;
    }
    const qint64 year = is_negative ? -fields[0] : fields[0];
    const qint64 days = text::days_to_month(year, fields[1] - 1) + fields[2] - 1;
    const qint64 seconds = ((days * 24 + fields[3]) * 60 + fields[4]) * 60 + fields[5];
    return static_cast<double>(seconds - text::seconds_1970_to_2001);
}

} // namespace

bool xml_property_list::load(QByteArray *bytes)
{
    clear();
    const xml_list_text list = xml_list_as_utf8(bytes, &converted_);
    if (list.begin == nullptr)
        return false;
    const qint64 used_bytes = qint64(bytes->size()) + converted_.size();
    const qint64 max_count = (max_list_memory_bytes - used_bytes) / xml_element_bytes;
    const xml_list_extent extent = check_xml_list(list.begin, list.end, max_count);
    if (extent.begin == nullptr)
        return false;
    is_loaded_ = true;
    has_cdata_ = extent.has_cdata;
    is_ascii_ = extent.is_ascii;
    const unsigned flags = parse_flags | white_space_flag(has_cdata_);
    const pugi::xml_parse_result parsed = document_.load_buffer_inplace(
        extent.begin, size_t(extent.end - extent.begin), flags, pugi::encoding_utf8);
    if (!parsed)
        clear();
    return is_loaded_;
}

void xml_property_list::clear()
{
    if (is_loaded_) {
        is_loaded_ = false;
        document_.reset();
        for (dictionary_index &index : indexes_)
            index.dictionary = 0;
        last_element_ = {};
        last_end_ = {};
    }
    if (!converted_.isEmpty())
        converted_ = QByteArray();
}

property_list_node xml_property_list::root() const
{
    return from_node(document_.first_child());
}

value_kind xml_property_list::kind(property_list_node node) const
{
    return kind_of(to_node(node));
}

QString xml_property_list::class_name(property_list_node node) const
{
    return foundation_class_name(kind(node));
}

QString xml_property_list::text_of(pugi::xml_node element) const
{
    if (has_cdata_ && element.first_child())
        return joined_text(element);
    const char *const bytes = element.value();
    const size_t length = strnlen(bytes, more_than_longest_text_bytes);
    return is_ascii_ ? QString::fromLatin1(bytes, static_cast<int>(length))
                     : from_utf8(bytes, length);
}

QString xml_property_list::text(property_list_node node) const
{
    const pugi::xml_node element = to_node(node);
    return kind_of(element) == value_kind::text ? within_limit(text_of(element)) : QString();
}

double xml_property_list::double_value(property_list_node node) const
{
    const pugi::xml_node element = to_node(node);
    switch (kind_of(element)) {
    case value_kind::text:
        return text::leading_double(text_of(element));
    case value_kind::boolean:
        return element.name()[0] == 't' ? 1 : 0;
    case value_kind::number:
        break;
    default:
        return 0;
    }
    if (element.name()[0] == 'r')
        return read_real(element.value());
    const whole_number number = read_whole_number(element.value());
    const auto magnitude = static_cast<double>(number.magnitude);
    return number.is_negative ? -magnitude : magnitude;
}

double xml_property_list::seconds_since_reference_date(property_list_node node) const
{
    const pugi::xml_node element = to_node(node);
    return kind_of(element) == value_kind::date ? read_date(element.value()) : 0;
}

bool xml_property_list::is_floating(property_list_node node) const
{
    return to_node(node).name()[0] == 'r';
}

qint64 xml_property_list::integer_value(property_list_node node) const
{
    const pugi::xml_node element = to_node(node);
    switch (element.name()[0]) {
    case 't':
        return 1;
    case 'r':
        return text::truncated_to_int64(read_real(element.value()));
    case 'i':
        break;
    default:
        return 0;
    }
    const whole_number number = read_whole_number(element.value());
    return static_cast<qint64>(number.is_negative ? 0 - number.magnitude : number.magnitude);
}

int xml_property_list::count(property_list_node node) const
{
    if (last_end_.container == node && node != 0)
        return last_end_.index;
    const pugi::xml_node container = to_node(node);
    const value_kind kind = kind_of(container);
    if (kind != value_kind::array && kind != value_kind::dictionary)
        return 0;
    int count = 0;
    for (pugi::xml_node child = first_element(container); child; child = next_element(child))
        ++count;
    if (kind == value_kind::dictionary)
        count /= 2;
    last_end_ = {node, count, {}};
    return count;
}

bool xml_property_list::read_entries(pugi::xml_node dictionary,
                                     std::vector<dictionary_entry> *entries) const
{
    entries->clear();
    const auto next = [this](pugi::xml_node element) {
        return has_cdata_ ? next_element(element) : element.next_sibling();
    };
    pugi::xml_node key = first_element(dictionary);
    while (property_list_node key_node = from_node(key)) {
        if (entries->size() == max_indexed_count)
            return false;
        const pugi::xml_node value = next(key);
        dictionary_entry entry = {key.value(), 0, key_node, from_node(value)};
        entry.key_length = static_cast<int>(std::strlen(entry.key));
        const bool is_simple = (is_ascii_ || is_ascii(entry.key, entry.key_length)) &&
                               !(has_cdata_ && key.first_child());
        if (!is_simple)
            entry.key_length = -1;
        entries->push_back(entry);
        key = next(value);
    }
    return true;
}

const xml_property_list::dictionary_index *
xml_property_list::index_of(property_list_node dictionary) const
{
    for (const dictionary_index &index : indexes_) {
        if (index.dictionary == dictionary)
            return &index;
    }
    dictionary_index &index = indexes_[oldest_index_];
    index.dictionary = 0;
    if (!read_entries(to_node(dictionary), &index.entries))
        return nullptr;
    oldest_index_ = (oldest_index_ + 1) % indexes_.size();
    index.dictionary = dictionary;
    return &index;
}

bool xml_property_list::look_up(property_list_node dictionary, const QString &key,
                                property_list_node *found) const
{
    if (kind_of(to_node(dictionary)) != value_kind::dictionary)
        return false;
    const dictionary_index *const index = index_of(dictionary);
    if (index == nullptr)
        return look_up_in_place(to_node(dictionary), key, found);
    for (auto entry = index->entries.rbegin(); entry != index->entries.rend(); ++entry) {
        const bool is_equal =
            entry->key_length == key.size()
                ? key == QLatin1String(entry->key, entry->key_length)
                : entry->key_length < 0 && text_of(to_node(entry->key_element)) == key;
        if (is_equal) {
            *found = entry->value;
            return true;
        }
    }
    return false;
}

bool xml_property_list::element(property_list_node array, int index,
                                property_list_node *found) const
{
    const pugi::xml_node container = to_node(array);
    if (index < 0 || kind_of(container) != value_kind::array)
        return false;
    place at = last_element_;
    if (at.container != array || at.index > index)
        at = {array, 0, first_element(container)};
    for (; at.element && at.index < index; ++at.index)
        at.element = next_element(at.element);
    if (!at.element)
        return false;
    last_element_ = at;
    *found = from_node(at.element);
    return true;
}

void xml_property_list::visit_entries(property_list_node dictionary,
                                      const entry_visitor &visit) const
{
    if (kind_of(to_node(dictionary)) != value_kind::dictionary)
        return;
    pugi::xml_node key = first_element(to_node(dictionary));
    while (key) {
        const pugi::xml_node value = next_element(key);
        if (!visit(within_limit(text_of(key)), from_node(value)))
            return;
        key = next_element(value);
    }
}

QString xml_property_list::literal(property_list_node scalar) const
{
    const pugi::xml_node element = to_node(scalar);
    switch (kind_of(element)) {
    case value_kind::number:
    case value_kind::date:
        return within_limit(text_of(element));
    case value_kind::boolean:
        return QLatin1String(element.name());
    default:
        return {};
    }
}

QByteArray xml_property_list::data(property_list_node node) const
{
    const pugi::xml_node element = to_node(node);
    if (kind_of(element) != value_kind::data)
        return {};
    QByteArray base64(element.value());
    for (const pugi::xml_node piece : element.children())
        base64 += piece.value();
    QByteArray bytes = QByteArray::fromBase64(base64);
    return bytes.isNull() ? QByteArray("") : bytes;
}

} // namespace formats
