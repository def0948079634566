// The attributes of local copies that the examiner selected in addition to those of every row. They
// become a text to search in and an XML document.
#pragma once

#include "evidence/folders/source_boundary.h"
#include "extraction/source/path_mapper.h"
#include "platform/spotlight_item.h"
#include "run/cancellation.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace extraction {

// A local copy and the attributes to read from it.
struct selected_file
{
    QString path;
    evidence::resolved_path place;
    QStringList names; // of attributes, as Spotlight publishes them
};

struct selected_texts
{
    QString for_search; // the values parted by ";++::++;"
    QString document;   // XML of names and values
};

// Leaves out files outside the source. `catalog` may be null when there are no files.
[[nodiscard]] selected_texts texts_of_selected(const QList<selected_file> &files,
                                               const path_mapper &paths,
                                               platform::spotlight_catalog *catalog,
                                               const run::cancellation &cancelled);

// The same document for files of which no attribute is selected, made much faster.
class unselected_document
{
public:
    explicit unselected_document(const path_mapper &paths);
    // `path`: of a file inside the source.
    [[nodiscard]] QString of_file(const QString &path) const;

private:
    const path_mapper &paths_;
    QString before_path_;
    QString behind_path_;
};

} // namespace extraction
