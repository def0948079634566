// Measures whole runs over one source in turn, so that what disturbs the machine disturbs all of
// them alike.
#pragma once

#include "generated_source.h"

#include <QString>

#include <functional>
#include <vector>

struct run_outcome
{
    int rows = -1; // negative on a failure
    // What the contender itself has measured, when a part of the call is not to count; else
    // negative.
    double own_elapsed_us = -1;
};

// A way to get the rows of a source.
struct contender
{
    QString name;
    // Does one run into an empty database.
    std::function<run_outcome()> run;
    int most_rounds;
};

struct measured_contender
{
    QString name;
    int rounds = 0;
    // Medians of all rounds: elapsed time and time on a processor.
    double elapsed_us_per_row = 0;
    double processor_us_per_row = 0;
    // Median of the quotients with the first contender's elapsed time in the same round.
    double times_first = 0;
};

// Runs the contenders one after the other, `rounds` times, over `source`; ends the program when one
// does not give `rows` rows. `before_each`, which is not measured, comes before each run.
[[nodiscard]] std::vector<measured_contender>
measure_in_turn(const std::vector<contender> &contenders, int rounds, int rows,
                const std::function<void()> &before_each);
