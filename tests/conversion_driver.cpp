// Runs single converters and filters for a model in another language. One request a line:
// the function's name, a tab, its text; the answer is one line. In both, every UTF-16 unit that is
// not printable ASCII, and the backslash, is written as \ and four hexadecimal digits.
#include "support/plugin_static_function.h"

#include <QHash>

#include <iostream>
#include <string>

namespace {

using library = plugin_static_function;

QString timezone_seconds(QString text)
{
    return QString::number(library::convert_timezone_to_seconds(text));
}

QString iso_date_epoch(QString text)
{
    const QDateTime time = library::get_datetime_from_string_with_iso_date(text);
    return time.isValid() ? library::get_filtered_date_value(text) : QStringLiteral("invalid");
}

QString scan_version(QString scheme_and_version)
{
    library::source_os_version_full = scheme_and_version.section(QLatin1Char('|'), 1);
    return library::get_source_os_scan_version(scheme_and_version.section(QLatin1Char('|'), 0, 0));
}

QString unescaped(const std::string &text)
{
    QString units;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            units += QLatin1Char(text[i]);
            continue;
        }
        units += QChar(static_cast<ushort>(std::stoul(text.substr(i + 1, 4), nullptr, 16)));
        i += 4;
    }
    return units;
}

std::string escaped(const QString &text)
{
    QString line;
    for (const QChar unit : text) {
        if (unit >= QLatin1Char(' ') && unit <= QLatin1Char('~') && unit != QLatin1Char('\\'))
            line += unit;
        else
            line += QStringLiteral("\\%1").arg(unit.unicode(), 4, 16, QLatin1Char('0'));
    }
    return line.toStdString();
}

} // namespace

int main()
{
    const QHash<QString, QString (*)(QString)> functions = {
        {"apple", library::convert_apple_time_to_epoch},
        {"google", library::convert_google_time_to_epoch},
        {"timezone", timezone_seconds},
        {"readable_utc", library::convert_timestamp_to_human_readable_in_UTC},
        {"duration", library::get_human_readable_time},
        {"readable_1", library::convert_human_readable_to_epoch_1},
        {"readable_2", library::convert_human_readable_to_epoch_2},
        {"readable_3", library::convert_human_readable_to_epoch_3},
        {"t_z", library::convert_T_Z_time_to_epoch},
        {"iso_date", iso_date_epoch},
        {"number", library::get_filtered_number_value},
        {"boolean", library::get_filtered_boolean_value},
        {"cfstring", library::get_filtered_cfstring_value},
        {"where_from", library::get_filtered_wherefrom_value},
        {"string", library::get_filtered_string_value},
        {"date_filter", library::get_filtered_date_value},
        {"size", library::human_readable_size},
        {"suffix", library::mining_suffix},
        {"unicode", library::convert_string_to_unicode},
        {"scan_version", scan_version},
    };
    for (std::string line; std::getline(std::cin, line);) {
        const size_t tab = line.find('\t');
        const auto function = functions.value(QString::fromStdString(line.substr(0, tab)));
        if (tab == std::string::npos || function == nullptr)
            return 1;
        std::cout << escaped(function(unescaped(line.substr(tab + 1)))) << '\n';
    }
    return 0;
}
