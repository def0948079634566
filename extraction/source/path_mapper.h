// Turns paths of one source into the form that a row shows, and recorded home-relative paths into
// paths that are reachable here.
#pragma once

#include <QPair>
#include <QString>

namespace extraction {

class path_mapper
{
public:
    // `source_root` ends in "/"; `source_type` as the host names it.
    path_mapper(const QString &source_root, const QString &source_type);

    // Where "~/Downloads" of that user is reachable here. The first character is dropped without a
    // look at it: the client writes "~" there.
    [[nodiscard]] QString reachable(const QString &recorded, const QString &user) const;
    // The path on the source of a path that is reachable here: without the root, with a leading
    // "/". Null stays null.
    [[nodiscard]] QString display(const QString &path) const;
    // The same without trimming, for paths whose blanks are part of the file's name.
    [[nodiscard]] QString untrimmed_display(const QString &path) const;
    // A display path as a row shows it: relative to the user when the source is a home folder.
    [[nodiscard]] QString shown(const QString &path, const QString &user) const;
    // A recorded folder as a row shows it; null for a null text.
    [[nodiscard]] QString shown_folder(const QString &recorded, const QString &user) const;
    // For a file of the source: the values of source_file and artifacts_relation_source_file.
    [[nodiscard]] QPair<QString, QString> source_files(const QString &path,
                                                       const QString &user) const;

private:
    QString source_root_;
    QString source_type_;
};

} // namespace extraction
