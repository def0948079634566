// A source, a result folder and a run over them, made in a temporary folder.
#pragma once

#include "macos/cyberduck_macos.h"
#include "plugin/cyberduck.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantMap>

#include <memory>

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

class source_builder
{
public:
    source_builder();

    // With trailing "/".
    [[nodiscard]] QString root() const { return root_; }
    [[nodiscard]] QString result_folder() const { return result_; }
    [[nodiscard]] QString database() const;
    // A folder outside of the source.
    [[nodiscard]] QString outside(const QString &name) const { return folder_.filePath(name); }

    // `path` counts from the root; missing folders are made. Returns the full path.
    QString write(const QString &path, const QByteArray &content) const;
    QString make_folder(const QString &path) const;
    void link(const QString &path, const QString &target) const;

    // A new frame, set up for this source with all four tabs, discovery done.
    [[nodiscard]] std::unique_ptr<cyberduck>
    frame(const QStringList &users,
          const QString &source_type = QStringLiteral("macOS_Image")) const;
    // The same for an adapter alone; its result tables exist.
    [[nodiscard]] std::unique_ptr<cyberduck_macos> adapter(const QStringList &users) const;
    [[nodiscard]] struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info
    source_info(const QStringList &users, const QString &source_type) const;

    // All rows of a table in the order of their numbers.
    [[nodiscard]] QList<QVariantMap> rows(const QString &table) const;
    void execute(const QString &statement) const;

private:
    QTemporaryDir folder_;
    QString root_;
    QString result_;
};
