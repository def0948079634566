#include "paired_runs.h"

#include "median.h"

#include <sys/resource.h>

#include <chrono>
#include <utility>

namespace {

constexpr double microseconds_per_second = 1e6;

struct round_times
{
    double elapsed_us = 0;
    double processor_us = 0;
    double times_first = 0;
};

double microseconds(const timeval &time)
{
    return double(time.tv_sec) * microseconds_per_second + double(time.tv_usec);
}

// Of this process and of the children that have ended.
double processor_us()
{
    double sum = 0;
    for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage used = {};
        ::getrusage(who, &used);
        sum += microseconds(used.ru_utime) + microseconds(used.ru_stime);
    }
    return sum;
}

round_times measure(const contender &one, int rows)
{
    const double processor_before = processor_us();
    const auto before = std::chrono::steady_clock::now();
    const run_outcome got = one.run();
    const std::chrono::duration<double, std::micro> elapsed =
        std::chrono::steady_clock::now() - before;
    if (got.rows != rows)
        qFatal("%s gave %d rows instead of %d", qPrintable(one.name), got.rows, rows);
    const double elapsed_us = got.own_elapsed_us < 0 ? elapsed.count() : got.own_elapsed_us;
    return {elapsed_us, processor_us() - processor_before, 1};
}

double median_of(const std::vector<round_times> &rounds, double round_times::*value)
{
    std::vector<double> values;
    values.reserve(rounds.size());
    for (const round_times &round : rounds)
        values.push_back(round.*value);
    return median(std::move(values));
}

} // namespace

std::vector<measured_contender> measure_in_turn(const std::vector<contender> &contenders,
                                                int rounds, int rows,
                                                const std::function<void()> &before_each)
{
    std::vector<std::vector<round_times>> times(contenders.size());
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < contenders.size(); ++i) {
            if (round >= contenders[i].most_rounds)
                continue;
            before_each();
            round_times measured = measure(contenders[i], rows);
            if (i > 0)
                measured.times_first = measured.elapsed_us / times[0].back().elapsed_us;
            times[i].push_back(measured);
        }
    }
    std::vector<measured_contender> result;
    for (size_t i = 0; i < contenders.size(); ++i) {
        const auto median = [&](double round_times::*value) { return median_of(times[i], value); };
        result.push_back(
            {contenders[i].name, int(times[i].size()), median(&round_times::elapsed_us) / rows,
             median(&round_times::processor_us) / rows, median(&round_times::times_first)});
    }
    return result;
}
