// Measures several contenders in turn over one source. Other work on the machine then disturbs them
// alike.
#pragma once

#include "generated_source.h"

#include <QString>

#include <functional>
#include <vector>

struct run_outcome
{
    int rows = -1; // negative on a failure
    // The time that the contender itself measured, if a part of the call must not count. Otherwise
    // negative.
    double own_elapsed_us = -1;
};

// A program that gets the rows of a source.
struct contender
{
    QString name;
    // Runs once, into an empty database.
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
    // Median of the ratios to the first contender's elapsed time in the same round.
    double times_first = 0;
};

// Runs the contenders one after the other over `source`, `rounds` times. Ends the program when one
// does not give `rows` rows. `before_each` is called before each run and is not measured.
[[nodiscard]] std::vector<measured_contender>
measure_in_turn(const std::vector<contender> &contenders, int rounds, int rows,
                const std::function<void()> &before_each);
