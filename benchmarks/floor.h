// The least that an extraction can cost: walk, read every file, insert as many rows as the plug-in
// does, of the same texts, and nothing else.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

struct floor_shape
{
    QString folder; // walked with everything below it
    QString suffix; // of the files that are read
    QString database;
    QByteArray statement;    // an insert with a placeholder for each of `texts`
    QList<QByteArray> texts; // of every row, UTF-8; null for NULL
    int rows_per_file;
};

// A shape with the texts of the first row that is in the table.
[[nodiscard]] floor_shape floor_like_first_row(const QString &database, const QString &table,
                                               const QList<QByteArray> &columns);

// Returns how many rows were inserted, -1 on any failure.
[[nodiscard]] int run_floor(const floor_shape &shape);
