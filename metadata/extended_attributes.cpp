#include "metadata/extended_attributes.h"

#include "formats/attributes/attribute_name.h"
#include "formats/attributes/attribute_value.h"
#include "evidence/access/extended_attribute_bytes.h"
#include "evidence/files/system_errors.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace metadata {

namespace {

struct listed_name
{
    QByteArray listed;
    formats::attribute_name meaning;
};

// The order in which names of one attribute are tried; the name itself comes last so that the order
// does not hang on the file system's.
bool is_preferred(const listed_name &left, const listed_name &right)
{
    return std::tie(left.meaning.preference, left.meaning.has_flags, left.listed) <
           std::tie(right.meaning.preference, right.meaning.has_flags, right.listed);
}

} // namespace

class extended_attributes::file final : public file_metadata
{
public:
    file(single_notes &notes, const source_file &about)
        : notes_(notes)
        , path_(about.path)
        , held_(about.held)
    {
    }

    std::optional<formats::spotlight_value> attribute(const QString &name) override
    {
        list_once();
        if (is_listed_ && names_.empty())
            return std::nullopt;
        return formats::spotlight_attribute(
            name, [this](const QByteArray &canonical) { return first_readable(canonical); });
    }

private:
    std::optional<QByteArray> first_readable(const QByteArray &canonical)
    {
        if (!is_listed_)
            return first_of_possible(canonical);
        for (const listed_name &name : names_) {
            if (name.meaning.canonical != canonical)
                continue;
            const evidence::system_bytes value =
                evidence::read_extended_attribute(*held_, name.listed);
            if (value.error == 0) {
                note_found(name.listed);
                return value.bytes;
            }
            note_unreadable(name.listed, value.error);
        }
        return std::nullopt;
    }

    // A file system that keeps its list to itself may still answer for a name.
    std::optional<QByteArray> first_of_possible(const QByteArray &canonical)
    {
        const QList<QByteArray> names = formats::possible_listed_names(canonical);
        for (const QByteArray &name : names) {
            const evidence::system_bytes value = evidence::read_extended_attribute(*held_, name);
            if (value.error == 0) {
                note_found(name);
                return value.bytes;
            }
        }
        return std::nullopt;
    }

    void list_once()
    {
        if (was_asked_)
            return;
        was_asked_ = true;
        const evidence::system_bytes list = evidence::list_extended_attributes(*held_);
        is_listed_ = list.error == 0;
        const QList<QByteArray> names = list.bytes.split('\0');
        for (const QByteArray &name : names) {
            if (!name.isEmpty())
                names_.push_back({name, formats::canonical_attribute_name(name)});
        }
        std::sort(names_.begin(), names_.end(), is_preferred);
    }

    void note_found(const QByteArray &listed)
    {
        const QString prefix = QString::fromLatin1(formats::attribute_prefix(listed));
        notes_.add(
            prefix.isEmpty()
                ? QStringLiteral("metadata found in extended attributes of macOS's own names")
                : QStringLiteral("metadata found in extended attributes named \"%1...\"")
                      .arg(prefix));
    }

    void note_unreadable(const QByteArray &listed, int error)
    {
        // Current and older drivers of HFS+ list names with ":" and then do not find them.
        notes_.add(QStringLiteral("unreadable %1").arg(error),
                   QStringLiteral("extended attribute %1 is listed but not readable here (%2): %3")
                       .arg(QString::fromUtf8(listed), evidence::system_error_text(error), path_));
    }

    single_notes &notes_;
    QString path_;
    std::shared_ptr<const evidence::held_file> held_;
    bool was_asked_ = false;
    bool is_listed_ = false;
    std::vector<listed_name> names_; // in the order in which they are tried
};

std::unique_ptr<file_metadata> extended_attributes::open(const source_file &about)
{
    return std::make_unique<file>(notes_, about);
}

} // namespace metadata
