// TestU01's SmallCrush of one engine: testu01 ENGINE VIEW SEED. A line for each statistic: its name and p-value.
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

extern "C" {
#include <testu01/bbattery.h>
#include <testu01/swrite.h>
#include <testu01/unif01.h>
}

#include "engine_words.hpp"

namespace {

// The generator's function has no argument.
std::unique_ptr<quality::word_reader> next_word;

unsigned next() {
  return (*next_word)();
}

void run(const std::string& engine, const std::string& view, const std::string& seed) {
  const auto source =
      quality::engine_words(quality::engine_named(engine), quality::view_named(view), std::stoull(seed));
  next_word = std::make_unique<quality::word_reader>(*source);
  std::string name = engine;
  unif01_Gen* const generator = unif01_CreateExternGenBits(name.data(), next);

  // Its report goes to standard output, whatever swrite_Basic says.
  std::FILE* const results = fdopen(dup(STDOUT_FILENO), "w");
  if (results == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
    throw std::runtime_error("cannot turn TestU01's report away");
  swrite_Basic = FALSE;
  bbattery_SmallCrush(generator);
  // Some places of its table are of tests that make several statistics; -1 marks one that was not made.
  for (int i = 0; i < bbattery_NTests; ++i)
    if (bbattery_pVal[i] >= 0) {
      const double p = bbattery_pVal[i];
      std::string test = bbattery_TestNames[i];
      std::replace_if(
          test.begin(), test.end(), [](unsigned char c) { return std::isspace(c); }, '_');
      std::fprintf(results, "smallcrush_%s\t%.3g\n", test.c_str(), std::min(1.0, 2 * std::min(p, 1 - p)));
    }
  std::fclose(results);
  unif01_DeleteExternGenBits(generator);
}

} // namespace

int main(int count, char** arguments) try {
  if (count != 4)
    throw std::invalid_argument("testu01 ENGINE VIEW SEED");
  run(arguments[1], arguments[2], arguments[3]);
  return 0;
} catch (const std::exception& e) {
  std::fprintf(stderr, "testu01: %s\n", e.what());
  return 1;
}
