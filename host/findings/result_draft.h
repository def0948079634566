// A new result database, filled beside the old one and put in its place when the run has ended. So
// a run that is killed leaves the old result as it was.
#pragma once

#include "host/findings/result_place.h"

#include <QString>

#include <memory>
#include <optional>

namespace host {

class result_draft
{
public:
    // `place`: where the result comes to lie. Its directory exists.
    explicit result_draft(const result_place &place);
    // Removes what is left of the draft.
    ~result_draft();
    result_draft(const result_draft &) = delete;
    result_draft &operator=(const result_draft &) = delete;

    // Makes the draft's folder. With `append` it starts with copies of the old databases. Fails,
    // before anything is written, when another program has locked the old database or it is none.
    [[nodiscard]] std::optional<failure> begin(bool append);
    // What the plug-in gets as its result directory.
    [[nodiscard]] QString directory() const;
    // Where the plug-in makes the result database.
    [[nodiscard]] QString database() const;
    // Where the inventory is made.
    [[nodiscard]] QString inventory() const;
    // A file for the plug-in's log.
    [[nodiscard]] QString log() const;
    // Puts the new databases in place of the old ones. A partial result database gets a file beside
    // it, named like the database with ".partial" behind, which a complete one removes.
    [[nodiscard]] std::optional<failure> finish(bool is_partial);

private:
    class locked_folder;

    [[nodiscard]] std::optional<failure> check_old_database() const;

    result_place place_;
    std::unique_ptr<locked_folder> folder_;
};

} // namespace host
