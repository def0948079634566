// Measures the index of a volume: reading it once, its memory, and asking it.
#include "formats/spotlight_store/spotlight_store.h"

#include "generated_index.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace generated_index;

std::unique_ptr<formats::spotlight_store> opened(const QHash<QString, QByteArray> &files,
                                                 formats::spotlight_budget *budget)
{
    return std::make_unique<formats::spotlight_store>(
        std::make_unique<evidence::memory_byte_folder>(files), QStringLiteral("store"), budget);
}

void index_store(benchmark::State &state)
{
    const auto files = of_volume(quint64(state.range(0)));
    size_t bytes = 0;
    size_t records = 0;
    for (auto _ : state) {
        formats::spotlight_budget budget;
        const auto store = opened(files, &budget);
        store->load();
        bytes = store->index().memory_bytes();
        records = store->index().size();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["bytes/record"] = double(bytes) / double(records);
    state.counters["MiB"] = double(bytes) / 1048576.0;
}

// Looks a file up by path and reads one attribute. The files are spread over the volume.
void look_up(benchmark::State &state)
{
    const auto files = of_volume(quint64(state.range(0)));
    formats::spotlight_budget budget;
    const auto store = opened(files, &budget);
    store->load();
    quint64 id = first_id;
    size_t found = 0;
    for (auto _ : state) {
        budget.grant_question();
        id = first_id + records_per_folder + (id * 7919) % (quint64(state.range(0)) - 200);
        id += id % records_per_folder == 0 ? 1 : 0;
        const QStringList path = {folder_name(id - id % records_per_folder), file_name(id)};
        const auto records = store->index().find_path(path);
        const auto values = records.empty() ? nullptr : store->attributes(records.front());
        if (values != nullptr && values->value(QStringLiteral("kMDItemUsedDates")))
            ++found;
    }
    if (found != size_t(state.iterations()))
        state.SkipWithError("a file was not found");
}

BENCHMARK(index_store)->Arg(200000)->Arg(2000000)->Unit(benchmark::kMillisecond);
BENCHMARK(look_up)->Arg(200000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
