// Draws the cost of an item against the number of items.
#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

struct cost_line
{
    QString name;
    QVector<QPointF> points; // items, microseconds per item; ascending
};

struct cost_labels
{
    QString title;
    QString items; // below the axis
    QString cost;  // above the axis
};

// Both axes are logarithmic. False when the PNG cannot be written.
bool write_cost_plot(const QString &path, const cost_labels &labels,
                     const QVector<cost_line> &lines);
