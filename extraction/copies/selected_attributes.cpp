#include "extraction/copies/selected_attributes.h"

#include "text/stored_text.h"
#include "text/value_filters.h"

#include <QXmlStreamWriter>

namespace extraction {

namespace {

constexpr char search_separator[] = ";++::++;";

// The value filters recognise a description by its start.
QString filtered_value(const QString &name, const QString &description,
                       const run::cancellation &cancelled)
{
    if (description.startsWith(QLatin1String("<CFNumber ")))
        return text::get_filtered_number_value(description);
    if (description.startsWith(QLatin1String("<CFBoolean ")))
        return text::get_filtered_boolean_value(description);
    if (description.startsWith(QLatin1String("<CFString ")))
        return text::get_filtered_cfstring_value(description);
    const QString trimmed = description.trimmed();
    return name == QLatin1String("kMDItemWhereFroms")
               ? text::get_filtered_wherefrom_value(trimmed)
               : text::get_filtered_string_value(trimmed, cancelled);
}

bool is_xml_character(QChar character)
{
    const ushort code = character.unicode();
    return code >= 0x20 ? code != 0xFFFE && code != 0xFFFF
                        : code == '\t' || code == '\n' || code == '\r';
}

// XML cannot hold control characters.
QString writable_in_xml(const QString &value)
{
    QString text = text::whole_characters(value);
    for (QChar &character : text) {
        if (!is_xml_character(character))
            character = QChar::ReplacementCharacter;
    }
    return text;
}

class document_writer
{
public:
    document_writer()
    {
        xml_.setAutoFormatting(true);
        xml_.writeStartElement(QStringLiteral("Extended_Attributes_XML_Header"));
    }

    [[nodiscard]] QXmlStreamWriter &xml() { return xml_; }
    void begin_file(const QString &path)
    {
        xml_.writeStartElement(QStringLiteral("Extended_Attributes_Artifact_Source_Header"));
        xml_.writeTextElement(QStringLiteral("File_Path"), path);
    }
    void end_file() { xml_.writeEndElement(); }
    [[nodiscard]] QString end()
    {
        xml_.writeEndElement();
        xml_.writeEndDocument();
        return text_;
    }

private:
    // Into a text, which names no encoding by itself, since that is much faster than into bytes.
    QString text_ = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    QXmlStreamWriter xml_{&text_};
};

// Appends each selected attribute that the file has to the search text and the document.
void write_attributes(const platform::spotlight_item &item, const QStringList &names,
                      const run::cancellation &cancelled, QXmlStreamWriter *xml,
                      QString *search_text)
{
    for (const QString &name : names) {
        const auto description = item.attribute(name);
        if (!description)
            continue;
        // Before a filter removes what stands between two halves of different pairs.
        const QString value =
            filtered_value(name, text::whole_characters(description->text), cancelled);
        *search_text += value + QLatin1String(search_separator);
        xml->writeTextElement(name, writable_in_xml(value));
    }
}

} // namespace

selected_texts texts_of_selected(const QList<selected_file> &files, const path_mapper &paths,
                                 platform::spotlight_catalog *catalog,
                                 const run::cancellation &cancelled)
{
    QString search_text;
    document_writer document;
    for (int i = 0; i < files.size() && !cancelled.is_requested(); ++i) {
        const selected_file &file = files.at(i);
        if (file.place.where != evidence::reach::inside)
            continue;
        document.begin_file(writable_in_xml(paths.untrimmed_display(file.path)));
        // Without an item the element holds only the path.
        const auto item = catalog->item(file.place);
        if (item)
            write_attributes(*item, file.names, cancelled, &document.xml(), &search_text);
        document.end_file();
    }
    if (search_text.endsWith(QLatin1String(search_separator)))
        search_text.chop(int(sizeof search_separator) - 1);
    return {search_text, document.end()};
}

unselected_document::unselected_document(const path_mapper &paths)
    : paths_(paths)
{
    const QString mark = QStringLiteral("path");
    document_writer document;
    document.begin_file(mark);
    document.end_file();
    const QString whole = document.end();
    const int place = whole.indexOf(QLatin1Char('>') + mark + QLatin1Char('<')) + 1;
    before_path_ = whole.left(place);
    behind_path_ = whole.mid(place + mark.size());
}

QString unselected_document::of_file(const QString &path) const
{
    return before_path_ + writable_in_xml(paths_.untrimmed_display(path)).toHtmlEscaped() +
           behind_path_;
}

} // namespace extraction
