// The least that an extraction can cost: walks, reads every file, and inserts as many rows as the
// plug-in does, with the same texts. Of a local copy it asks for status and names of attributes.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

struct floor_shape
{
    QString folder; // walked with everything below it
    QString suffix; // of the files that are read
    QString database;
    QByteArray statement;    // an insert with a placeholder for each of `texts`
    QList<QByteArray> texts; // of every row, UTF-8; null for NULL
    int rows_per_file;
    // The path of the local copy that a row of a list names; null where rows name none.
    std::function<QByteArray(const QByteArray &list_path, int row)> copy_of;
};

// A shape with the texts of the table's first row.
[[nodiscard]] floor_shape floor_like_first_row(const QString &database, const QString &table,
                                               const QList<QByteArray> &columns);

// Returns how many rows were inserted, -1 on any failure.
[[nodiscard]] int run_floor(const floor_shape &shape);
