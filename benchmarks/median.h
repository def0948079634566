// The median of measurements.
#pragma once

#include <algorithm>
#include <vector>

// `values` must not be empty.
[[nodiscard]] inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}
