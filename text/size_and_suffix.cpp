#include "text/size_and_suffix.h"

namespace text {

namespace {

constexpr qint64 bytes_per_kb = 1024;
constexpr qint64 bytes_per_mb = bytes_per_kb * 1024;

QString with_unit(qint64 size_bytes, qint64 unit_bytes, const char *unit)
{
    const double amount = static_cast<double>(size_bytes) / static_cast<double>(unit_bytes);
    return QString::number(amount, 'f', 2) + QLatin1String(unit);
}

} // namespace

QString human_readable_size(QString text)
{
    text = text.trimmed();
    if (text.isEmpty())
        return {};
    const auto size_bytes = static_cast<qint64>(text.toULongLong());
    if (size_bytes < bytes_per_kb)
        return QString::number(size_bytes) + QLatin1String(" B");
    if (size_bytes < bytes_per_mb)
        return with_unit(size_bytes, bytes_per_kb, " KB");
    return with_unit(size_bytes, bytes_per_mb, " MB");
}

QString mining_suffix(QString text)
{
    text = text.trimmed();
    while (text.endsWith(QLatin1Char('/')))
        text.chop(1);
    text.remove(0, text.lastIndexOf(QLatin1Char('/')) + 1);
    if (text.startsWith(QLatin1Char('.')))
        text.remove(0, 1);
    const int dot = text.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : text.mid(dot + 1);
}

} // namespace text
