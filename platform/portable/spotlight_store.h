// One store: the folder with its two files and its side tables. Both files list nearly the same
// records; for each the newer one answers.
//
// Reading is done in one pass, when `load` is called; values are decoded when asked for, from the
// page read again.
#pragma once

#include "byte_source.h"
#include "spotlight_attributes.h"
#include "spotlight_index.h"
#include "spotlight_store_file.h"

#include <QStringList>

#include <array>
#include <functional>
#include <list>
#include <memory>

namespace platform {

class spotlight_store
{
public:
    // `shown_name` stands for the store in notes.
    spotlight_store(std::unique_ptr<byte_folder> folder, QString shown_name);

    // Reads the index. False when there is nothing to ask afterwards: no file that can be read, or
    // stopped by `should_stop` (asked now and then; may be null).
    bool load(const std::function<bool()> &should_stop);
    // Why the store, or a part of it, cannot be used. Filled by `load`.
    [[nodiscard]] const QStringList &reasons() const { return reasons_; }
    [[nodiscard]] const spotlight_index &index() const { return index_; }
    // The values of a record of that index; null when its page cannot be read any more or holds
    // another record now.
    [[nodiscard]] std::unique_ptr<spotlight_attributes>
    attributes(spotlight_index::record_number record);

private:
    struct store_file
    {
        std::unique_ptr<spotlight_store_file> pages;
        std::shared_ptr<const spotlight_tables> tables;
    };
    struct cached_page
    {
        int file;
        quint32 block;
        QByteArray content;
    };

    void open_files();
    bool index_file(int number, const std::function<bool()> &should_stop);
    void explain(const spotlight_pass_result &result, const QString &file_name);
    [[nodiscard]] QByteArray page(int file, quint32 block);

    std::unique_ptr<byte_folder> folder_;
    QString shown_name_;
    std::array<store_file, 2> files_;
    spotlight_index index_;
    QStringList reasons_;
    std::list<cached_page> recent_pages_; // the latest first
};

} // namespace platform
