// What reading the indexes of one source may cost together. Work and memory grow with the bytes
// that the indexes have on disk and with the questions asked, never with what those bytes claim.
#pragma once

#include "run/cancellation.h"

#include <QtGlobal>

namespace formats {

// Charged before work is done. A unit is a byte that is unpacked, looked at or copied; things that
// take an object of their own cost spotlight_object_units besides.
class spotlight_budget
{
public:
    explicit spotlight_budget(const run::cancellation &cancelled = {})
        : cancelled_(cancelled)
    {
    }

    // For a file of an index, once. Honest pages unpack to several times their size; the records of
    // an honest index take less memory than its files take room.
    void grant_file(qint64 stored_bytes)
    {
        work_left_ += work_per_stored_byte * stored_bytes;
        memory_left_ += memory_per_stored_byte * stored_bytes;
    }
    // For a file that is asked for: one page and one record.
    void grant_question() { work_left_ += work_per_question; }

    // False when there is not so much left, or when the run was cancelled.
    [[nodiscard]] bool charge(qint64 units)
    {
        if (is_spent_ || cancelled_.is_requested())
            return false;
        is_spent_ = units > work_left_;
        work_left_ -= units;
        return !is_spent_;
    }
    // For what is kept as long as the index.
    [[nodiscard]] bool charge_memory(qint64 bytes)
    {
        if (bytes > memory_left_)
            return false;
        memory_left_ -= bytes;
        return true;
    }

    // Nothing can be charged any more.
    [[nodiscard]] bool is_spent() const { return is_spent_; }
    [[nodiscard]] bool is_cancelled() const { return cancelled_.is_requested(); }

private:
    static constexpr qint64 work_per_stored_byte = 12;
    static constexpr qint64 memory_per_stored_byte = 2;
    static constexpr qint64 work_per_question = 256LL * 1024;

    run::cancellation cancelled_;
    qint64 work_left_ = qint64(128) * 1024 * 1024;
    qint64 memory_left_ = qint64(32) * 1024 * 1024;
    bool is_spent_ = false;
};

constexpr qint64 spotlight_object_units = 64;

} // namespace formats
