// A source in a temporary folder, built entry by entry. If the file system refuses an entry, the
// program ends.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

// Places of one user's data below the source root.
extern const char older_bookmarks[];
extern const char older_history[];
extern const char older_transfers[];
extern const char container_bookmarks[];
extern const char preferences_path[];

// An XML list with this dictionary content.
[[nodiscard]] QByteArray xml_dictionary(const QByteArray &content);
// "<key>…</key><string>…</string>".
[[nodiscard]] QByteArray text_entry(const char *key, const char *value);

class forged_source
{
public:
    forged_source();

    // With trailing "/".
    [[nodiscard]] QString root() const { return root_; }
    // A folder outside the source.
    [[nodiscard]] QString outside(const QString &name) const { return folder_.filePath(name); }

    // `path` starts at the root. Missing folders are made. Returns the full path.
    QString write(const QString &path, const QByteArray &content) const;
    // The content, followed by zeros that take no room on the disk.
    void write_sparse(const QString &path, const QByteArray &content, qint64 size_bytes) const;
    QString make_folder(const QString &path) const;
    void link(const QString &path, const QString &target) const;
    void hard_link(const QString &path, const QString &existing) const;
    void fifo(const QString &path) const;

private:
    QTemporaryDir folder_;
    QString root_;
};
