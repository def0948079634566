#include "extraction/copies/copy_attributes.h"

#include "platform/image_properties.h"
#include "text/escapes/percent_decoding.h"
#include "text/text_replace.h"
#include "text/value_filters.h"

namespace extraction {

namespace {

using text_filter = QString (*)(const QString &description, const run::log_sink &log);

constexpr int significant_digits = 6;

// The part behind "=" of a description, without its quotes and brace.
QString behind_equals(const QString &description, const QString &without_equals)
{
    const QStringList pieces = description.split(QLatin1Char('='));
    QString value = pieces.size() < 2 ? without_equals : pieces.at(1);
    value.remove(QLatin1Char('}'));
    value.remove(QLatin1Char('"'));
    return value.trimmed();
}

QString value_behind_equals(const QString &description, const run::log_sink &)
{
    return behind_equals(description, QString());
}

QString kind_of(const QString &description, const run::log_sink &)
{
    return behind_equals(description, description);
}

// Removes what a printed list puts around its texts.
void remove_list_marks(QString *text)
{
    text->remove(QLatin1Char('\n'));
    for (const char *mark : {"  ", "(\"", "\")"})
        text::remove_every(text, QLatin1String(mark));
}

QString where_from_list(const QString &description, const run::log_sink &)
{
    if (description.isEmpty())
        return description;
    QString text = text::percent_decoded(description);
    remove_list_marks(&text);
    text::replace_every(&text, QLatin1String("\","), QLatin1String(";"));
    text.replace(QLatin1Char(','), QLatin1Char(';'));
    text.remove(QLatin1Char('"'));
    text::replace_every(&text, QLatin1String("\\U2019s"), QLatin1String("'s"));
    return text::percent_decoded(text).remove(QLatin1Char('"'));
}

// Unlike where_from_list this decodes once, at the end, and keeps lone commas and quotes: names of
// torrent files may hold both.
QString torrent_list(const QString &printed, const run::log_sink &)
{
    QString description = printed;
    remove_list_marks(&description);
    text::replace_every(&description, QLatin1String("\",\""), QLatin1String(";"));
    return description.isEmpty() ? description : text::percent_decoded(description);
}

QString number_value(const QString &description, const run::log_sink &)
{
    return text::get_filtered_number_value(description);
}

QString date_value(const QString &description, const run::log_sink &log)
{
    return text::get_filtered_date_value(description, log);
}

struct attribute_field
{
    const char *name;
    QString copy_attributes::*field;
    text_filter filter;
};

constexpr attribute_field attribute_fields[] = {
    {"kMDItemDateAdded", &copy_attributes::date_added, date_value},
    {"kMDItemContentCreationDate", &copy_attributes::content_creation_date, date_value},
    {"kMDItemContentModificationDate", &copy_attributes::content_modification_date, date_value},
    {"kMDItemContentType", &copy_attributes::content_type, value_behind_equals},
    {"kMDItemKind", &copy_attributes::kind, kind_of},
    {"kMDItemFSContentChangeDate", &copy_attributes::fs_content_change_date, date_value},
    {"kMDItemFSCreationDate", &copy_attributes::fs_creation_date, date_value},
    {"kMDItemFSName", &copy_attributes::fs_name, value_behind_equals},
    {"kMDItemFSNodeCount", &copy_attributes::fs_node_count, number_value},
    {"kMDItemWhereFroms", &copy_attributes::where_from, where_from_list},
    {"kMDItemAltitude", &copy_attributes::altitude, number_value},
    {"org_bittorrent_torrent_filenames", &copy_attributes::torrent_file_list, torrent_list},
};

QString degrees_text(const std::optional<double> &degrees, const QString &reference,
                     QLatin1Char negative)
{
    if (!degrees)
        return {};
    const QString text = QString::number(*degrees, 'g', significant_digits).trimmed();
    return reference.contains(negative, Qt::CaseInsensitive) ? QLatin1Char('-') + text : text;
}

} // namespace

copy_attributes attributes_of(const platform::spotlight_item &item, const run::log_sink &log)
{
    copy_attributes record;
    for (const attribute_field &entry : attribute_fields) {
        const auto description = item.attribute(QLatin1String(entry.name));
        // A text that the system does not hand out as a C string counts as none.
        if (description && !description->c_string.isNull())
            record.*entry.field = entry.filter(description->c_string, log);
    }
    return record;
}

position_texts position_of(const evidence::resolved_path &place)
{
    const formats::gps_position position = platform::read_gps_position(place);
    return {degrees_text(position.latitude, position.latitude_reference, QLatin1Char('S')),
            degrees_text(position.longitude, position.longitude_reference, QLatin1Char('W'))};
}

} // namespace extraction
