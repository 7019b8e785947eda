// Measures one engine, for tools/quality/quality.py, or pours its words out, for test batteries that read a pipe.
//
//   quality list                          engines, each with its views
//   quality run ENGINE VIEW SEED SIZE     a line for each test: its name and p-value
//   quality pour ENGINE VIEW SEED         random bits without end
//   quality quasi ENGINE                  a line for each measure: name, value, limit
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "battery.hpp"
#include "engine_words.hpp"
#include "quasi.hpp"

namespace {

using namespace quality;

void list() {
  for (const auto& engine : all_engines()) {
    std::printf("%s", engine.name);
    for (const named_view& v : all_views())
      if (has_view(engine, v.value))
        std::printf("\t%s", v.name);
    std::printf("\n");
  }
}

// The bits that a word has, without those that are always zero.
void pour(word_source& source) {
  std::vector<std::uint32_t> words(1 << 14), packed;
  std::uint64_t waiting = 0;
  unsigned count = 0;
  do {
    source.fill(words);
    packed.clear();
    for (const std::uint32_t word : words) {
      waiting |= std::uint64_t{word >> (32 - source.bits())} << count;
      count += source.bits();
      if (count >= 32) {
        packed.push_back(static_cast<std::uint32_t>(waiting));
        waiting >>= 32;
        count -= 32;
      }
    }
  } while (std::fwrite(packed.data(), sizeof(std::uint32_t), packed.size(), stdout) == packed.size());
}

void run(const std::vector<std::string>& arguments) {
  const auto is = [&](const char* verb, std::size_t count) {
    return arguments.size() == count + 1 && arguments[0] == verb;
  };
  const auto source = [&] {
    return engine_words(engine_named(arguments[1]), view_named(arguments[2]), std::stoull(arguments[3]));
  };
  if (is("list", 0)) {
    list();
  } else if (is("run", 4)) {
    for (const outcome& o : run_battery(*source(), static_cast<unsigned>(std::stoul(arguments[4]))))
      std::printf("%s\t%.3g\n", o.test.c_str(), o.p);
  } else if (is("pour", 3)) {
    pour(*source());
  } else if (is("quasi", 1)) {
    for (const measure& m : quasi_measures(engine_named(arguments[1])))
      std::printf("%s\t%.3g\t%.3g\n", m.name.c_str(), m.value, m.limit);
  } else {
    throw std::invalid_argument("list | run ENGINE VIEW SEED SIZE | pour ENGINE VIEW SEED | quasi ENGINE");
  }
}

} // namespace

int main(int count, char** arguments) try {
  run({arguments + 1, arguments + count});
  return 0;
} catch (const std::exception& e) {
  std::fprintf(stderr, "quality: %s\n", e.what());
  return 1;
}
