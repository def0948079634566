// Finds the client's lists in the homes of a source.
#pragma once

#include "evidence/folders/folder_walk.h"
#include "evidence/folders/source_boundary.h"
#include "inventory/reading/list_account.h"
#include "run/cancellation.h"

#include <QSet>
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

// A folder or file of the client that a home has.
struct found_place
{
    QString user;
    list_kind kind = list_kind::bookmark;
    QString place;
    QString path; // as on the source
};

struct found_on_source
{
    std::vector<found_list> lists; // by user, then by path
    std::vector<found_place> places;
    std::vector<found_note> notes;
};

// Counts how far the search has come; never more than the number of users.
class list_finder
{
public:
    // `root` ends in "/". Lists whose tab is not among `tabs` are skipped.
    list_finder(const QString &root, const QStringList &tabs, const run::cancellation &cancelled);

    // Looks through the homes of these users, below Users/. Ends early when cancelled.
    [[nodiscard]] found_on_source find(const QStringList &users);

private:
    void search_home(const QString &user);
    // Whether the home has this place.
    bool search_place(const QString &user, const client_place &place, bool is_in_use);
    void walk_folder(const found_place &place, const client_place &shape, const QString &real,
                     const QString &why_skipped);
    void take_entry(const evidence::folder_walk &walk, const found_place &place,
                    const client_place &shape, const QString &why_skipped);
    void take_link(const evidence::folder_walk &walk, found_list *list);
    void take_single_file(const found_place &place, const evidence::resolved_path &real,
                          const QString &why_skipped);
    void note(const QString &user, const QString &path, const QString &text, bool is_failure,
              const QString &target = {});
    [[nodiscard]] QString on_source(const QString &path) const;
    [[nodiscard]] QString why_not_in_tables(const client_place &place, bool is_in_use) const;

    QString root_;
    QStringList tabs_;
    run::cancellation cancelled_;
    evidence::source_boundary boundary_;
    found_on_source found_;
};

} // namespace inventory
