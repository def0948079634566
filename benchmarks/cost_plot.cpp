#include "cost_plot.h"

#include <QColor>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QRectF>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr QSize size_px(960, 600);
constexpr QRectF area(90, 60, 820, 450);
const QColor colours[] = {{0x55, 0x55, 0x55}, {0x00, 0x60, 0xc0}, {0xc0, 0x50, 0x00},
                          {0x00, 0x80, 0x40}, {0x80, 0x30, 0x90}, {0xa0, 0x80, 0x00}};

// A logarithmic axis between two powers of ten.
class axis
{
public:
    axis(double lowest, double highest, double from_px, double to_px)
        : low_(std::floor(std::log10(lowest)))
        , high_(std::max(std::ceil(std::log10(highest)), low_ + 1))
        , from_px_(from_px)
        , to_px_(to_px)
    {
    }

    [[nodiscard]] double at(double value) const
    {
        return from_px_ + (std::log10(value) - low_) / (high_ - low_) * (to_px_ - from_px_);
    }
    [[nodiscard]] QVector<double> powers() const
    {
        QVector<double> all;
        for (double power = low_; power <= high_; ++power)
            all.append(std::pow(10.0, power));
        return all;
    }

private:
    double low_;
    double high_;
    double from_px_;
    double to_px_;
};

QRectF box(double x, double y)
{
    return {x - 60, y - 12, 120, 24};
}

void draw_grid(QPainter *painter, const axis &rows, const axis &cost)
{
    for (const double value : rows.powers()) {
        painter->setPen(QColor(0xdd, 0xdd, 0xdd));
        painter->drawLine(QPointF(rows.at(value), area.top()),
                          QPointF(rows.at(value), area.bottom()));
        painter->setPen(Qt::black);
        painter->drawText(box(rows.at(value), area.bottom() + 16), Qt::AlignCenter,
                          QLocale::c().toString(value, 'f', 0));
    }
    for (const double value : cost.powers()) {
        painter->setPen(QColor(0xdd, 0xdd, 0xdd));
        painter->drawLine(QPointF(area.left(), cost.at(value)),
                          QPointF(area.right(), cost.at(value)));
        painter->setPen(Qt::black);
        painter->drawText(box(area.left() - 70, cost.at(value)), Qt::AlignRight | Qt::AlignVCenter,
                          QLocale::c().toString(value, 'g', 6));
    }
}

// The values of the lowest line stand below it. The names stand in the corner.
void draw_line(QPainter *painter, const axis &rows, const axis &cost, const cost_line &line,
               int index)
{
    const QColor &colour = colours[index % int(std::size(colours))];
    const double value_shift = index == 0 ? 16 : -16;
    painter->setPen(QPen(colour, 2));
    painter->setBrush(colour);
    QPolygonF drawn;
    for (const QPointF &point : line.points) {
        drawn.append({rows.at(point.x()), cost.at(point.y())});
        painter->drawEllipse(drawn.constLast(), 3, 3);
        painter->drawText(box(drawn.constLast().x(), drawn.constLast().y() + value_shift),
                          Qt::AlignCenter, QLocale::c().toString(point.y(), 'f', 1));
    }
    painter->drawPolyline(drawn);
    painter->drawText(QPointF(area.right() - 110, area.top() + 20 + 20 * index), line.name);
}

} // namespace

bool write_cost_plot(const QString &path, const cost_labels &labels,
                     const QVector<cost_line> &lines)
{
    double lowest[2] = {1e300, 1e300};
    double highest[2] = {0, 0};
    for (const cost_line &line : lines) {
        for (const QPointF &point : line.points) {
            const double values[2] = {point.x(), point.y()};
            for (int i = 0; i < 2; ++i) {
                lowest[i] = std::min(lowest[i], values[i]);
                highest[i] = std::max(highest[i], values[i]);
            }
        }
    }
    if (highest[0] <= 0)
        return false;
    QImage image(size_px, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawText(QRectF(0, 16, size_px.width(), 24), Qt::AlignCenter, labels.title);
    const axis rows(lowest[0], highest[0], area.left(), area.right());
    const axis cost(lowest[1], highest[1], area.bottom(), area.top());
    draw_grid(&painter, rows, cost);
    painter.drawText(QRectF(0, area.bottom() + 40, size_px.width(), 24), Qt::AlignCenter,
                     labels.items);
    painter.drawText(QPointF(16, 50), labels.cost);
    for (int i = 0; i < lines.size(); ++i)
        draw_line(&painter, rows, cost, lines.at(i), i);
    painter.end();
    return image.save(path, "PNG");
}
