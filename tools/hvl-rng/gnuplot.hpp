// The program gnuplot.
#pragma once

#include <string>

namespace hvl_rng {

// What gnuplot writes to its standard output for this script, which must draw in its last command. Throws
// `failure` where gnuplot is missing or fails; its own messages are left to standard error.
std::string run_gnuplot(const std::string& script);

// The terminal that draws what a file's suffix promises. Throws `failure` naming --output.
std::string picture_terminal(const std::string& file);

} // namespace hvl_rng
