#include "formats/attributes/attribute_value.h"

#include "formats/attributes/declared_class.h"
#include "formats/attributes/finder_info.h"

#include "formats/property_list/property_list_parser.h"
#include "text/dates/calendar.h"

#include <QDateTime>
#include <QTextCodec>
#include <QtEndian>

#include <utility>

namespace formats {

namespace {

constexpr char metadata_prefix[] = "com.apple.metadata:";
constexpr char last_used_name[] = "com.apple.lastuseddate#PS";
constexpr char finder_info_name[] = "com.apple.FinderInfo";
constexpr char hfsfuse_creation_name[] = "hfsfuse.record.date_created";

// Their values are enciphered, not property lists.
constexpr char label_prefix[] = "kMDLabel_";

constexpr int last_used_bytes = 16;
constexpr qint64 nanoseconds_per_second = 1'000'000'000;

// A binary list can name one text many times over, so that a small value would grow without end.
constexpr int max_list_elements = 65536;
constexpr qint64 max_list_characters = 4LL * 1024 * 1024;

constexpr int utf8_mib = 106;

std::optional<spotlight_scalar> scalar_of(const property_list_value &value)
{
    switch (value.kind()) {
    case value_kind::text:
        return value.text();
    case value_kind::boolean:
        return value.integer_value() != 0;
    case value_kind::number:
        if (value.is_floating())
            return spotlight_floating{value.double_value(), false};
        return value.integer_value();
    case value_kind::date: {
        const spotlight_date date{value.seconds_since_reference_date() +
                                  static_cast<double>(text::seconds_1970_to_2001)};
        return is_printable(date) ? std::optional<spotlight_scalar>(date) : std::nullopt;
    }
    case value_kind::absent:
    case value_kind::data:
    case value_kind::array:
    case value_kind::dictionary:
        break;
    }
    return std::nullopt;
}

std::optional<spotlight_value> list_of(const property_list_value &array)
{
    if (array.count() > max_list_elements)
        return std::nullopt;
    spotlight_list list;
    qint64 characters = 0;
    for (int i = 0; i < array.count(); ++i) {
        std::optional<spotlight_scalar> element = scalar_of(array.at(i));
        if (!element)
            continue;
        if (const QString *text = std::get_if<QString>(&*element))
            characters += text->size();
        if (characters > max_list_characters)
            return std::nullopt;
        list.push_back(std::move(*element));
    }
    // An empty list counts as missing.
    return list.empty() ? std::nullopt : std::optional<spotlight_value>(std::move(list));
}

std::optional<spotlight_value> value_of(const property_list_value &root)
{
    if (root.is(value_kind::array))
        return list_of(root);
    std::optional<spotlight_scalar> scalar = scalar_of(root);
    if (!scalar)
        return std::nullopt;
    return std::visit([](auto &value) { return spotlight_value(std::move(value)); }, *scalar);
}

std::optional<spotlight_value> property_list_value_of(const QByteArray &bytes)
{
    property_list_parser list;
    list.parse_copy(bytes);
    // The trailer of a binary list is found from the end, so one byte more spoils it.
    if (list.root().is(value_kind::absent) && bytes.endsWith('\0'))
        list.parse_copy(bytes.left(bytes.size() - 1));
    return list.root().is(value_kind::absent) ? std::nullopt : value_of(list.root());
}

bool is_xml_list(const QByteArray &bytes)
{
    constexpr char byte_order_mark[] = "\xef\xbb\xbf";
    int start = bytes.startsWith(byte_order_mark) ? 3 : 0;
    while (start < bytes.size() && QByteArray(" \t\r\n").contains(bytes[start]))
        ++start;
    const QByteArray beginning = bytes.mid(start, 16);
    return beginning.startsWith("<?xml") || beginning.startsWith("<!DOCTYPE plist") ||
           beginning.startsWith("<plist");
}

std::optional<spotlight_value> text_of(QByteArray bytes)
{
    if (bytes.endsWith('\0'))
        bytes.chop(1);
    if (bytes.isEmpty() || bytes.contains('\0'))
        return std::nullopt;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text =
        QTextCodec::codecForMib(utf8_mib)->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        return std::nullopt;
    return text;
}

// One FUSE driver tells the creation date of an HFS+ file in a text of its own making.
std::optional<spotlight_value> hfsfuse_creation_value(const QByteArray &bytes)
{
    const QDateTime created =
        QDateTime::fromString(QString::fromLatin1(bytes).trimmed(), Qt::ISODateWithMs);
    // Without an offset it would be the local time of a machine that is not known.
    if (!created.isValid() || created.timeSpec() == Qt::LocalTime)
        return std::nullopt;
    return date_value(static_cast<double>(created.toMSecsSinceEpoch()) / 1000.0);
}

bool is_creation_date(const QString &name)
{
    return name == QLatin1String("kMDItemFSCreationDate") ||
           name == QLatin1String("kMDItemContentCreationDate");
}

} // namespace

std::optional<spotlight_value> date_value(double epoch_seconds)
{
    const spotlight_date date{epoch_seconds};
    return is_printable(date) ? std::optional<spotlight_value>(date) : std::nullopt;
}

std::optional<spotlight_value> metadata_value(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return std::nullopt;
    if (bytes.startsWith("bplist0") || is_xml_list(bytes))
        return property_list_value_of(bytes);
    return text_of(bytes);
}

std::optional<spotlight_value> last_used_value(const QByteArray &bytes)
{
    const bool has_server_nul = bytes.size() == last_used_bytes + 1 && bytes.endsWith('\0');
    if (bytes.size() != last_used_bytes && !has_server_nul)
        return std::nullopt;
    const qint64 seconds = qFromLittleEndian<qint64>(bytes.constData());
    const qint64 nanoseconds = qFromLittleEndian<qint64>(bytes.constData() + sizeof seconds);
    if (nanoseconds < 0 || nanoseconds >= nanoseconds_per_second)
        return std::nullopt;
    // The fraction is never shown, and added to so many seconds it could round up to the next one.
    return date_value(static_cast<double>(seconds));
}

std::optional<spotlight_value> spotlight_attribute(const QString &name,
                                                   const attribute_lookup &look_up)
{
    if (name.isEmpty() || name.contains(QChar::Null) ||
        name.startsWith(QLatin1String(label_prefix)))
        return std::nullopt;
    std::optional<spotlight_value> value;
    const auto try_form = [&](const QByteArray &attribute, const auto &convert) {
        const std::optional<QByteArray> bytes = value ? std::nullopt : look_up(attribute);
        if (bytes)
            value = convert(*bytes);
        if (value)
            value = of_declared_class(name, std::move(*value));
    };
    if (name == QLatin1String("kMDItemLastUsedDate"))
        try_form(last_used_name, last_used_value);
    try_form(metadata_prefix + name.toUtf8(), metadata_value);
    if (finder_info::knows(name)) {
        try_form(finder_info_name,
                 [&](const QByteArray &bytes) { return finder_info(bytes).attribute(name); });
    }
    if (is_creation_date(name))
        try_form(hfsfuse_creation_name, hfsfuse_creation_value);
    return value;
}

} // namespace formats
