// Finds the client's lists in the homes of a source.
#pragma once

#include "evidence/folders/folder_walk.h"
#include "evidence/folders/source_boundary.h"
#include "inventory/places/found_list.h"
#include "run/cancellation.h"

#include <QStringList>

#include <vector>

namespace inventory {

// Something worth knowing that is no list.
struct found_note
{
    QString user;
    QString path; // as on the source
    QString text;
    QString target;          // of a link
    bool is_failure = false; // lists may lie there that nobody could read
};

struct found_on_source
{
    std::vector<found_list> lists;      // by user, then by path
    std::vector<searched_place> places; // that are there
    std::vector<found_note> notes;
};

class list_finder
{
public:
    // Nothing is read outside of `root`, which ends in "/". `shown_root` is its path on the source.
    // Lists whose tab is not among `tabs` are skipped.
    list_finder(const QString &root, const QString &shown_root, const QStringList &tabs,
                const run::cancellation &cancelled);

    // Of the places of one user and kind, the first that is there is the one that rows come from.
    // Ends early when cancelled.
    [[nodiscard]] found_on_source find(const std::vector<searched_place> &places);

private:
    // Whether the place is there.
    bool search(const searched_place &place, bool is_in_use);
    void walk_folder(const searched_place &place, const QString &real, const QString &why_skipped);
    void take_entry(const evidence::folder_walk &walk, const searched_place &place,
                    const QString &why_skipped);
    void take_link(const evidence::folder_walk &walk, found_list *list);
    void take_single_file(const searched_place &place, const evidence::resolved_path &real,
                          const QString &why_skipped);
    void note(const QString &user, const QString &path, const QString &text, bool is_failure,
              const QString &target = {});
    [[nodiscard]] QString target_outside(const QString &path) const;
    [[nodiscard]] QString on_source(const QString &path) const;
    [[nodiscard]] QString why_not_in_tables(const searched_place &place, bool is_in_use) const;

    QString root_;
    QString shown_root_;
    QStringList tabs_;
    run::cancellation cancelled_;
    evidence::source_boundary boundary_;
    found_on_source found_;
};

} // namespace inventory
