// Writes the inventory's database.
#pragma once

#include "inventory/places/list_finder.h"
#include "inventory/reading/list_account.h"
#include "inventory/writing/sqlite_statement.h"

#include <QString>

#include <memory>

struct sqlite3;

namespace inventory {

// What is told of a source as a whole. Null: not known.
struct source_facts
{
    int number = 1;
    QString path;   // as given
    QString layout; // as recognised
    QString root;   // used; reachable here
    QString os_version;
    QString volume_name;
    QString volume_uuid;
    QString count_name; // what the rows of this source have in source_count_name
};

// Not safe against a loss of power: made under a temporary name, and of use only when whole.
class inventory_database
{
public:
    inventory_database();
    ~inventory_database();
    inventory_database(const inventory_database &) = delete;
    inventory_database &operator=(const inventory_database &) = delete;

    // Makes a new database, or goes on with one that this class has made (`is_there`). False when
    // it cannot, or when that is no inventory of this version.
    bool open(const QString &path, bool is_there);
    // The highest number of a source in it; 0 without any.
    [[nodiscard]] int last_source();

    bool add_source(const source_facts &source);
    bool add_list(int source, const list_account &account);
    bool add_note(int source, const found_note &note);
    bool add_place(int source, const searched_place &place);

    // Counts the rows that the result database at `path` has for each list of the sources from
    // `first_source` on.
    bool count_rows(const QString &path, int first_source);
    // Ends the writing. False when something of it failed.
    bool close();
    [[nodiscard]] const QString &problem() const { return problem_; }

private:
    bool execute(const char *text);
    bool run_once(const char *text, const QString &parameter);
    bool prepare();
    bool check(bool is_done);
    [[nodiscard]] std::optional<qint64> number_of(const char *query);

    struct statements;
    sqlite3 *database_ = nullptr;
    std::unique_ptr<statements> statements_;
    qint64 last_list_ = 0;
    QString problem_; // the first one
};

} // namespace inventory
