// Spotlight metadata and GPS position of a transferred file's local copy.
#include "extended_attributes.h"

#include "cyberduck_macos.h"
#include "platform/image_properties.h"
#include "platform/spotlight_item.h"
#include "support/percent_decoding.h"
#include "support/plugin_static_function.h"
#include "support/text_replace.h"

#include <QXmlStreamWriter>

namespace {

using attributes_record = struct_GLOBAL_ARTIFACT_cfstring_attributes;
using text_filter = QString (*)(QString description);

constexpr char notes_signature[] = "void cyberduck_macos::log_metadata_notes()";
constexpr int significant_digits = 6;
constexpr char search_separator[] = ";++::++;";

// The part behind "=" of a description, without its quotes and brace.
QString behind_equals(const QString &description, const QString &without_equals)
{
    const QStringList pieces = description.split(QLatin1Char('='));
    QString value = pieces.size() < 2 ? without_equals : pieces.at(1);
    value.remove(QLatin1Char('}'));
    value.remove(QLatin1Char('"'));
    return value.trimmed();
}

QString value_behind_equals(QString description)
{
    return behind_equals(description, QString());
}

QString kind_of(QString description)
{
    return behind_equals(description, description);
}

// Removes what a printed list puts around its texts.
void remove_list_marks(QString *text)
{
    text->remove(QLatin1Char('\n'));
    for (const char *mark : {"  ", "(\"", "\")"})
        support::remove_every(text, QLatin1String(mark));
}

QString where_from_list(QString description)
{
    if (description.isEmpty())
        return description;
    QString text = support::percent_decoded(description);
    remove_list_marks(&text);
    support::replace_every(&text, QLatin1String("\","), QLatin1String(";"));
    text.replace(QLatin1Char(','), QLatin1Char(';'));
    text.remove(QLatin1Char('"'));
    support::replace_every(&text, QLatin1String("\\U2019s"), QLatin1String("'s"));
    return support::percent_decoded(text).remove(QLatin1Char('"'));
}

// Other than where_from_list: one decoding at the end, lone commas and quotes stay. File names of a
// torrent hold both.
QString torrent_list(QString description)
{
    remove_list_marks(&description);
    support::replace_every(&description, QLatin1String("\",\""), QLatin1String(";"));
    return description.isEmpty() ? description : support::percent_decoded(description);
}

struct attribute_field
{
    const char *name;
    QString attributes_record::*field;
    text_filter filter;
};

constexpr attribute_field attribute_fields[] = {
    {"kMDItemDateAdded", &attributes_record::date_added,
     plugin_static_function::get_filtered_date_value},
    {"kMDItemContentCreationDate", &attributes_record::content_creation_date,
     plugin_static_function::get_filtered_date_value},
    {"kMDItemContentModificationDate", &attributes_record::content_modification_date,
     plugin_static_function::get_filtered_date_value},
    {"kMDItemContentType", &attributes_record::content_type, value_behind_equals},
    {"kMDItemKind", &attributes_record::kind, kind_of},
    {"kMDItemFSContentChangeDate", &attributes_record::fs_content_change_date,
     plugin_static_function::get_filtered_date_value},
    {"kMDItemFSCreationDate", &attributes_record::fs_creation_date,
     plugin_static_function::get_filtered_date_value},
    {"kMDItemFSName", &attributes_record::fs_name, value_behind_equals},
    {"kMDItemFSNodeCount", &attributes_record::fs_node_count,
     plugin_static_function::get_filtered_number_value},
    {"kMDItemWhereFroms", &attributes_record::where_from, where_from_list},
    {"kMDItemAltitude", &attributes_record::altitude,
     plugin_static_function::get_filtered_number_value},
    {"org_bittorrent_torrent_filenames", &attributes_record::torrent_file_list, torrent_list},
};

QString degrees_text(const std::optional<double> &degrees, const QString &reference,
                     QLatin1Char negative)
{
    if (!degrees)
        return {};
    const QString text = QString::number(*degrees, 'g', significant_digits).trimmed();
    return reference.contains(negative, Qt::CaseInsensitive) ? QLatin1Char('-') + text : text;
}

// The value filters know a description by how it starts.
QString filtered_value(const QString &name, const QString &description)
{
    if (description.startsWith(QLatin1String("<CFNumber ")))
        return plugin_static_function::get_filtered_number_value(description);
    if (description.startsWith(QLatin1String("<CFBoolean ")))
        return plugin_static_function::get_filtered_boolean_value(description);
    if (description.startsWith(QLatin1String("<CFString ")))
        return plugin_static_function::get_filtered_cfstring_value(description);
    const QString text = description.trimmed();
    return name == QLatin1String("kMDItemWhereFroms")
               ? plugin_static_function::get_filtered_wherefrom_value(text)
               : plugin_static_function::get_filtered_string_value(text);
}

bool is_xml_character(QChar character)
{
    const ushort code = character.unicode();
    return code >= 0x20 ? code != 0xFFFE && code != 0xFFFF
                        : code == '\t' || code == '\n' || code == '\r';
}

// XML has no way to write control characters: the document would be unreadable with one. Lone
// surrogates become replacement characters when the writer encodes them.
QString writable_in_xml(QString text)
{
    for (QChar &character : text) {
        if (!is_xml_character(character))
            character = QChar::ReplacementCharacter;
    }
    return text;
}

// Appends each selected attribute that the file has to the search text and the document.
void write_attributes(const platform::spotlight_item &item, const QStringList &names,
                      QXmlStreamWriter *xml, QString *search_text)
{
    for (const QString &name : names) {
        const auto description = item.attribute(name);
        if (!description)
            continue;
        const QString value = filtered_value(name, description->text);
        *search_text += value + QLatin1String(search_separator);
        xml->writeTextElement(name, writable_in_xml(value));
    }
}

} // namespace

support::resolved_path cyberduck_macos::place_in_source(const QString &path) const
{
    if (path.isEmpty())
        return {};
    return support::source_boundary(fs_extraction_source_path).resolve(path);
}

void cyberduck_macos::log_metadata_notes()
{
    const QStringList notes = plugin_static_function::metadata_catalog()->take_notes();
    for (const QString &note : notes)
        plugin_static_function::app_debug(note, QLatin1String(notes_signature));
}

attributes_record cyberduck_macos::extract_cfstring_attributes(QString file_path)
{
    const support::resolved_path place = place_in_source(file_path);
    return place.where == support::reach::inside ? attributes_at(place.path) : attributes_record();
}

attributes_record cyberduck_macos::attributes_at(const QString &real_path) const
{
    attributes_record record;
    const auto item = plugin_static_function::metadata_catalog()->item(real_path);
    if (!item)
        return record;
    for (const attribute_field &entry : attribute_fields) {
        const auto description = item->attribute(QLatin1String(entry.name));
        // A text that the system does not hand out as a C string counts as none.
        if (description && !description->c_string.isNull())
            record.*entry.field = entry.filter(description->c_string);
    }
    const QPair<QString, QString> position = position_at(real_path);
    record.latitude = position.first;
    record.longitude = position.second;
    return record;
}

QPair<QString, QString> cyberduck_macos::extract_longi_lati_attributes(QString file_path)
{
    const support::resolved_path place = place_in_source(file_path);
    return place.where == support::reach::inside ? position_at(place.path)
                                                 : QPair<QString, QString>();
}

QPair<QString, QString> cyberduck_macos::position_at(const QString &real_path) const
{
    const platform::gps_position position = platform::read_gps_position(real_path);
    return {degrees_text(position.latitude, position.latitude_reference, QLatin1Char('S')),
            degrees_text(position.longitude, position.longitude_reference, QLatin1Char('W'))};
}

QPair<QString, QString> cyberduck_macos::get_extended_attributes(QStringList file_paths,
                                                                 QList<QStringList> attribute_lists)
{
    QList<macos::placed_file> files;
    for (const QString &path : qAsConst(file_paths))
        files.append({path, place_in_source(path)});
    return attributes_of_files(files, attribute_lists);
}

QPair<QString, QString>
cyberduck_macos::attributes_of_files(const QList<macos::placed_file> &files,
                                     const QList<QStringList> &attribute_lists) const
{
    const macos::path_mapper paths(fs_extraction_source_path, source_type_internal);
    QString search_text;
    QByteArray buffer;
    QXmlStreamWriter xml(&buffer);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("Extended_Attributes_XML_Header"));
    for (int i = 0; i < files.size() && !is_cancelled(); ++i) {
        const macos::placed_file &file = files.at(i);
        if (file.place.where != support::reach::inside)
            continue;
        xml.writeStartElement(QStringLiteral("Extended_Attributes_Artifact_Source_Header"));
        xml.writeTextElement(QStringLiteral("File_Path"),
                             writable_in_xml(paths.untrimmed_display(file.path)));
        // Without an item the element holds the path alone.
        const auto item = plugin_static_function::metadata_catalog()->item(file.place.path);
        if (item)
            write_attributes(*item, attribute_lists.value(i), &xml, &search_text);
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    if (search_text.endsWith(QLatin1String(search_separator)))
        search_text.chop(int(sizeof search_separator) - 1);
    return {search_text, QString::fromUtf8(buffer)};
}
