// Classifies a million generated names per round and prints names per second. The names have
// suffixes of all lists, and unknown ones. Unknown ones are the slowest: their whole bucket is
// searched.
#include "text/media/media_extensions.h"
#include "host_interface/library/plugin_helper_functions.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr int name_count = 1000000;

using check = bool (plugin_helper_functions::*)(QString);

std::vector<QString> make_names()
{
    std::vector<QString> suffixes;
    for (const char *extension : text::image_extensions)
        suffixes.emplace_back(QLatin1String(extension));
    for (const char *extension : text::audio_extensions)
        suffixes.emplace_back(QString(QLatin1String(extension)).toUpper());
    for (const char *unknown : {".wmv", ".pdf", ".sqlite", ".plist", ".mzz", ".szz", ".azz", ""})
        suffixes.insert(suffixes.end(), 60, QLatin1String(unknown));
    std::vector<QString> names;
    names.reserve(name_count);
    for (size_t number = 0; number < name_count; ++number)
        names.push_back(QStringLiteral("IMG_%1").arg(number) + suffixes[number % suffixes.size()]);
    return names;
}

void classify(benchmark::State &state, check is_listed)
{
    static const std::vector<QString> names = make_names();
    plugin_helper_functions helper(nullptr);
    qint64 found = 0;
    for ([[maybe_unused]] auto round : state) {
        for (const QString &name : names)
            found += (helper.*is_listed)(name) ? 1 : 0;
    }
    benchmark::DoNotOptimize(found);
    state.SetItemsProcessed(state.iterations() * name_count);
}

} // namespace

BENCHMARK_CAPTURE(classify, image, &plugin_helper_functions::check_is_image_by_extn)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(classify, audio, &plugin_helper_functions::check_is_audio_by_extn)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(classify, video, &plugin_helper_functions::check_is_video_by_extn)
    ->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
