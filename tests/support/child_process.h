// Parts of a test that need another process: with other rights, or with a lock of its own.
#pragma once

#include <gtest/gtest.h>

#include <QString>

#include <functional>

// Runs `part` in a copy of this process that has no special rights, since root may read and write
// anything. `folder` and all in it belong to that user before. Failures in it fail the test.
void run_unprivileged(const QString &folder, const std::function<void()> &part);

// Another process that holds the database locked until it is released or this object goes.
class database_lock
{
public:
    // `begin`: the statements that take the lock, e.g. "BEGIN EXCLUSIVE".
    database_lock(const QString &database, const QStringList &begin);
    ~database_lock() { release(); }
    database_lock(const database_lock &) = delete;
    database_lock &operator=(const database_lock &) = delete;
    void release();

private:
    int pipe_to_child_ = -1;
    int child_ = -1;
};
