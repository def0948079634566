// One store: the folder with its two files and its side tables. Both files list nearly the same
// records; for each the newer one answers.
//
// Reading is done in one pass, when `load` is called; values are decoded when asked for, from the
// page read again.
#pragma once

#include "evidence/files/byte_source.h"
#include "formats/spotlight_store/spotlight_attributes.h"
#include "formats/spotlight_store/spotlight_index.h"
#include "formats/spotlight_store/spotlight_store_file.h"

#include <QStringList>

#include <array>
#include <functional>
#include <list>
#include <memory>

namespace formats {

class spotlight_store
{
public:
    // `shown_name` stands for the store in notes. `budget` pays for everything that is read, and
    // must outlive the store.
    spotlight_store(std::unique_ptr<evidence::byte_folder> folder, QString shown_name,
                    spotlight_budget *budget);

    // Reads the index. False when there is nothing to ask afterwards: no file that can be read, or
    // cancelled.
    bool load();
    // Why the store, or a part of it, cannot be used. Filled by `load`.
    [[nodiscard]] const QStringList &reasons() const { return reasons_; }
    [[nodiscard]] const spotlight_index &index() const { return index_; }
    // The values of a record of that index; null when its page cannot be read any more, holds
    // another record now, or is not covered by the budget.
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
    [[nodiscard]] std::unique_ptr<spotlight_store_file> open_file(const QString &name);
    [[nodiscard]] bool explain(const spotlight_tables &tables, const QString &shown);
    bool index_file(int number);
    void explain(const spotlight_pass_result &result, const QString &file_name);
    [[nodiscard]] QByteArray page(int file, quint32 block);

    std::unique_ptr<evidence::byte_folder> folder_;
    QString shown_name_;
    spotlight_budget *budget_;
    std::array<store_file, 2> files_;
    QStringList refused_files_;
    int refusal_ = 0; // the system's number for the reason
    spotlight_index index_;
    QStringList reasons_;
    std::list<cached_page> recent_pages_; // the latest first
};

} // namespace formats
