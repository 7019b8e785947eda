// How rare an outcome is: twice the probability, at most 1, of the tail that it lies in. Both tails count, as numbers that
// are too even are not random either.
#pragma once

#include <cstdint>
#include <span>

namespace quality {

double p_of_chi_square(double statistic, double degrees_of_freedom);
double p_of_normal(double deviations);
double p_of_poisson(std::uint64_t count, double mean);

// Pearson's statistic of counts of independent outcomes with these probabilities. Neighbouring outcomes are counted as one
// until ten or more are expected.
double p_of_counts(std::span<const std::uint64_t> counts, std::span<const double> probabilities);

// The least of `tries` independent p-values, as one.
double p_of_least(double p, double tries);

} // namespace quality
