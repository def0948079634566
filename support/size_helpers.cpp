// Sizes of files and folders, for display and for rows.
#include "plugin_static_function.h"

#include "folder_size.h"

namespace {

constexpr qint64 bytes_per_kb = 1024;
constexpr qint64 bytes_per_mb = bytes_per_kb * 1024;

QString with_unit(qint64 size_bytes, qint64 unit_bytes, const char *unit)
{
    const double amount = static_cast<double>(size_bytes) / static_cast<double>(unit_bytes);
    return QString::number(amount, 'f', 2) + QLatin1String(unit);
}

} // namespace

// Larger units than MB are not used, so that displayed sizes compare; a size beyond the signed
// range shows as the negative number of bytes that it is to the host.
QString plugin_static_function::human_readable_size(QString text)
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

// `path`: reachable here, links in it already resolved.
QString plugin_static_function::mining_size(QString path)
{
    const auto size_bytes = support::size_of(path, bool_cancel_extraction);
    return size_bytes ? QString::number(*size_bytes) : QString();
}

QString plugin_static_function::mining_suffix(QString text)
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
