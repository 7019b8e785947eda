// The members of mt2203: searches for them, writes their table, and checks the one that the stream library has.
//
//   mt2203_table pool COUNT               masks for the pool of mt2203_search.hpp
//   mt2203_table search FIRST LAST        those members, a line each, as soon as they are found
//   mt2203_table header < LINES           hvl/mt2203_table.h, from the lines of all members
//
// Every member is found by itself, so that the search can be cut into parts in any way.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include "mt2203_search.hpp"

using namespace mt2203_table;

namespace {

void write_pool(std::uint32_t count) {
  for (std::uint32_t member = 1 << 15; count != 0; ++member) {
    const std::uint32_t a = twist_constants(member)();
    const masks found = search_masks(a);
    if (total_defect({a, found.b, found.c}) > most_defect)
      continue;
    std::printf("{0x%08X, 0x%08X},\n", found.b, found.c);
    --count;
  }
}

void search(std::uint32_t first, std::uint32_t last) {
  for (std::uint32_t member = first; member <= last; ++member) {
    const twister t = search_member(member);
    std::printf("%u 0x%08X 0x%08X 0x%08X %d\n", member, t.a, t.b, t.c, total_defect(t));
    std::fflush(stdout);
  }
}

} // namespace

int main(int argc, char** argv) try {
  const std::string_view verb = argc > 1 ? argv[1] : "";
  const auto number = [argv](int i) { return static_cast<std::uint32_t>(std::strtoul(argv[i], nullptr, 10)); };
  if (verb == "pool" && argc == 3)
    write_pool(number(2));
  else if (verb == "search" && argc == 4)
    search(number(2), number(3));
  else
    return 2;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
