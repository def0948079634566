// Where the lines of a run go. The host decides whether and how they are written.
#pragma once

#include <QLatin1String>
#include <QString>

namespace run {

class log_sink
{
public:
    virtual ~log_sink() = default;

    // Whether lines are kept at all. Ask before building a costly one.
    [[nodiscard]] virtual bool is_on() const = 0;
    // One line. `function` is the signature under which readers of the log know its writer.
    virtual void write(const QString &message, const QString &function) const = 0;

    // The same for literals: `words`, then `value`.
    void write(const char *words, const QString &value, const char *function) const
    {
        if (is_on())
            write(QLatin1String(words) + value, QLatin1String(function));
    }
    // The same with `value` in the place of "%1", and without it where the words have no such
    // place.
    void write_filled(const char *words, const QString &value, const char *function) const
    {
        if (!is_on())
            return;
        QString message = QLatin1String(words);
        const int place = message.indexOf(QLatin1String("%1"));
        if (place >= 0)
            message.replace(place, 2, value);
        write(message, QLatin1String(function));
    }
};

} // namespace run
