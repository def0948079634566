// Gathers lines for a log, each once and not once per file.
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <utility>

namespace metadata {

class single_notes
{
public:
    // Keeps `line` unless something was noted under `subject` before.
    void add(const QString &subject, const QString &line)
    {
        if (told_.contains(subject))
            return;
        told_.insert(subject);
        pending_.append(line);
    }
    void add(const QString &line) { add(line, line); }
    // The lines since the last call, oldest first.
    [[nodiscard]] QStringList take() { return std::exchange(pending_, {}); }

private:
    QSet<QString> told_;
    QStringList pending_;
};

} // namespace metadata
