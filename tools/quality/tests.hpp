// Tests whose outcome has a known law for random words. Each reads on where the one before stopped, and gives the p-value of
// tails.hpp. "The first bits" of a word are its highest.
//
// D. E. Knuth, The Art of Computer Programming 2, 3.3.2 (serial, gaps, runs); P. L'Ecuyer, R. Simard, "On the performance of
// birthday spacings tests with certain families of random number generators", Mathematics and Computers in Simulation 55,
// 2001; P. L'Ecuyer, R. Simard, "TestU01", ACM Transactions on Mathematical Software 33, 2007 (ranks, linear complexity,
// Hamming weights).
#pragma once

#include "word_source.hpp"

namespace quality {

// Cells that tuples of words fall into by their first bits, tuples not overlapping.
double serial(word_source& source, std::size_t tuples, unsigned dimensions, unsigned bits);

// Lengths of the gaps between words whose first bits are zero.
double gaps(word_source& source, std::size_t count, unsigned bits);

// Lengths of ascending runs, the word that ends a run left out, so that they are independent.
double runs(word_source& source, std::size_t count);

// Equal spacings between days that the first bits of so many words make; their number is close to a Poisson variable where
// years * birthdays^3 is at most days^(5/4).
double birthday_spacings(word_source& source, std::size_t birthdays, unsigned dimensions, unsigned bits,
                         std::size_t years);

// Ranks of square matrices over two elements, filled row by row with the first bits of words. Of fewer than 128 matrices only
// the lowest rank is looked at.
double matrix_rank(word_source& source, std::size_t size, unsigned bits, std::size_t matrices);

// Linear complexity of the sequence of first bits: of one long sequence, and how it is spread over blocks.
double long_complexity(word_source& source, std::size_t length);
double block_complexity(word_source& source, std::size_t length, std::size_t blocks);

// Numbers of set bits: of pairs of words, chi-square; the greatest correlation of words 1 ... lags apart; the greatest mean
// product of three words at any two distances up to `lags`.
double hamming_pairs(word_source& source, std::size_t pairs);
double hamming_lags(word_source& source, std::size_t n, std::size_t lags);
double hamming_triples(word_source& source, std::size_t n, std::size_t lags);

} // namespace quality
