// SPDX-License-Identifier: MIT
// The rows of the generated reflection loops the benchmarks read, written alike everywhere.
#pragma once

#include <cstdio>
#include <random>
#include <string_view>

// Rows of six columns (h, k, l, F squared, its sigma, a status), 35 bytes
// each, from a fixed seed, so that a benchmark's file is the same on every
// run. The index range and the lowest value are those each benchmark's
// figures were first measured with.
class ReflectionRows {
public:
    explicit ReflectionRows(int index_limit = 60, double lowest = 1.0)
        : index_(-index_limit, index_limit), value_(lowest, 9999.0) {}

    // The next row, its line end included; valid until the next call.
    std::string_view next() {
        const double f = value_(random_);
        const int h = index_(random_), k = index_(random_), l = index_(random_);
        const int n = std::snprintf(row_, sizeof row_, "%4d%4d%4d %10.2f %8.2f o\n", h, k, l, f, f / 37.0);
        return std::string_view(row_, static_cast<std::size_t>(n));
    }

private:
    std::mt19937 random_{7};
    std::uniform_int_distribution<int> index_;
    std::uniform_real_distribution<double> value_;
    char row_[96];
};
