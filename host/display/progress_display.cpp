#include "host/display/progress_display.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace host {

namespace {

constexpr qint64 between_lines_ms = 1000;
constexpr qint64 between_bars_ms = 100;
constexpr int bar_columns = 24;

int terminal_columns()
{
    struct winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return 80;
    return size.ws_col;
}

void write_error(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

QString clock_text(qint64 elapsed_ms)
{
    const qint64 seconds = elapsed_ms / 1000;
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

progress_display::progress_display(progress_mode mode, const QStringList &tabs, qint64 expected)
    : style_(style::line)
    , tabs_(tabs)
    , expected_(expected)
{
    if (mode == progress_mode::never)
        style_ = style::none;
    else if (mode == progress_mode::always || isatty(STDERR_FILENO) == 1)
        style_ = style::bar;
    since_start_.start();
    since_shown_.start();
}

void progress_display::update(qint64 records, int tabs_finished)
{
    if (style_ == style::none)
        return;
    if (style_ == style::bar) {
        if (!bar_is_drawn_ || tabs_finished != tabs_shown_ ||
            since_shown_.elapsed() >= between_bars_ms)
            draw_bar(records, tabs_finished);
        return;
    }
    if (since_shown_.elapsed() < between_lines_ms)
        return;
    since_shown_.restart();
    write_error(text(records, tabs_finished) + QLatin1Char('\n'));
}

void progress_display::finish()
{
    if (bar_is_drawn_)
        write_error(QStringLiteral("\r\x1b[K"));
    bar_is_drawn_ = false;
}

// "history (2 of 4), 1234 records, 560/s, 0:00:02"
QString progress_display::text(qint64 records, int tabs_finished) const
{
    const int current = std::min(tabs_finished, tabs_.size() - 1);
    const QString tab = current < 0 ? QStringLiteral("no tab")
                                    : QStringLiteral("%1 (%2 of %3)")
                                          .arg(tabs_.at(current))
                                          .arg(current + 1)
                                          .arg(tabs_.size());
    const qint64 elapsed_ms = std::max<qint64>(since_start_.elapsed(), 1);
    const QString done =
        QStringLiteral("%1, %2 records, %3/s, %4")
            .arg(tab)
            .arg(records)
            .arg(1000.0 * static_cast<double>(records) / static_cast<double>(elapsed_ms), 0, 'f', 0)
            .arg(clock_text(elapsed_ms));
    if (expected_ <= 0 || records <= 0)
        return done;
    const qint64 left_ms = std::max<qint64>(expected_ - records, 0) * elapsed_ms / records;
    return done + QStringLiteral(", %1 left").arg(clock_text(left_ms));
}

double progress_display::share_done(qint64 records, int tabs_finished) const
{
    const bool counts_records = expected_ > 0;
    const double done = counts_records ? double(records) : tabs_finished;
    const double all = counts_records ? double(expected_) : std::max(tabs_.size(), 1);
    return std::clamp(done / all, 0.0, 1.0);
}

void progress_display::draw_bar(qint64 records, int tabs_finished)
{
    const int filled = static_cast<int>(bar_columns * share_done(records, tabs_finished));
    const QString bar = QLatin1Char('[') + QString(filled, QLatin1Char('#')) +
                        QString(bar_columns - filled, QLatin1Char('-')) + QStringLiteral("] ");
    // A line that wraps could not be overwritten.
    const QString line = (bar + text(records, tabs_finished)).left(terminal_columns() - 1);
    write_error(QLatin1Char('\r') + line + QStringLiteral("\x1b[K"));
    bar_is_drawn_ = true;
    tabs_shown_ = tabs_finished;
    since_shown_.restart();
}

} // namespace host
