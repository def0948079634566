// Draws the cost of a row against the number of rows.
#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

struct cost_line
{
    QString name;
    QVector<QPointF> points; // rows, microseconds per row; ascending
};

// Both axes are logarithmic. False when the PNG cannot be written.
bool write_cost_plot(const QString &path, const QString &title, const QVector<cost_line> &lines);
