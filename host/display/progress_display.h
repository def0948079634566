// Shows the progress of a run on standard error.
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
    // `tabs`: the selected tabs in the order in which they are extracted. `expected`: how many
    // records there will be; negative when nobody knows. The time starts here.
    progress_display(progress_mode mode, const QStringList &tabs, qint64 expected = -1);

    // Records and tabs finished so far. Shows them, but not too often.
    void update(qint64 records, int tabs_finished);
    // Removes the bar; messages may follow.
    void finish();

private:
    enum class style { none, line, bar };

    [[nodiscard]] QString text(qint64 records, int tabs_finished) const;
    [[nodiscard]] double share_done(qint64 records, int tabs_finished) const;
    void draw_bar(qint64 records, int tabs_finished);

    style style_;
    QStringList tabs_;
    qint64 expected_;
    QElapsedTimer since_start_;
    QElapsedTimer since_shown_;
    int tabs_shown_ = 0;
    bool bar_is_drawn_ = false;
};

} // namespace host
