// Cleans printed lists of several megabytes and prints bytes of text per second. The rate must not
// fall with the size: a forged attribute may be as long as its file.
#include "host_interface/library/plugin_static_function.h"

#include <benchmark/benchmark.h>

namespace {

using filter = QString (*)(QString text);

constexpr int bytes_per_mb = 1024 * 1024;

QString repeated(const QString &element, int size)
{
    QString text = QStringLiteral("(");
    text.reserve(size + element.size() + 2);
    while (text.size() < size)
        text += element;
    return text + QLatin1Char(')');
}

void measure(benchmark::State &state, filter cleaning, const char *element)
{
    const QString text =
        repeated(QString::fromLatin1(element), static_cast<int>(state.range(0)) * bytes_per_mb);
    for ([[maybe_unused]] auto round : state)
        benchmark::DoNotOptimize(cleaning(text));
    state.SetBytesProcessed(state.iterations() * text.size());
}

constexpr char addresses[] = "\n    \"https://example.org/path/to/file.zip?a=1,2&b=<3>\",";
constexpr char marks_only[] = "  (\"\"),\",";
constexpr char escapes[] = "\\U2019s\\Ud83d\\Ude00";

} // namespace

BENCHMARK_CAPTURE(measure, where_from_addresses,
                  plugin_static_function::get_filtered_wherefrom_value, addresses)
    ->Arg(1)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, where_from_marks, plugin_static_function::get_filtered_wherefrom_value,
                  marks_only)
    ->Arg(1)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, where_from_escapes, plugin_static_function::get_filtered_wherefrom_value,
                  escapes)
    ->Arg(1)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, list_addresses, plugin_static_function::get_filtered_string_value,
                  addresses)
    ->Arg(1)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, list_marks, plugin_static_function::get_filtered_string_value,
                  marks_only)
    ->Arg(1)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, decoded_escapes, plugin_static_function::convert_string_to_unicode,
                  escapes)
    ->Arg(1)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
