// Shows on standard error how far a run is.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QStringList>

namespace host {

// In the order of the option's values.
enum class progress_mode { automatic, always, never };

class progress_display
{
public:
    // `tabs`: the selected tabs in the order in which they are extracted. The time starts here.
    progress_display(progress_mode mode, const QStringList &tabs);

    // Records so far and tabs finished so far; shows them unless something was just shown.
    void update(qint64 records, int tabs_finished);
    // Removes the bar; messages may follow.
    void finish();

private:
    enum class style { none, line, bar };

    [[nodiscard]] QString text(qint64 records, int tabs_finished) const;
    void draw_bar(qint64 records, int tabs_finished);

    style style_;
    QStringList tabs_;
    QElapsedTimer since_start_;
    QElapsedTimer since_shown_;
    int tabs_shown_ = 0;
    bool bar_is_drawn_ = false;
};

} // namespace host
