// The members of mt2203: searches for them, writes their table, and checks the one that the stream library has.
//
//   mt2203_table pool COUNT          masks for the pool of mt2203_search.hpp
//   mt2203_table search FIRST LAST   those members, a line each, as soon as they are found
//   mt2203_table lines               the same lines for the members of the library's table
//   mt2203_table header < LINES      the table, from the lines of all members
//   mt2203_table check [COUNT]       all members of the table, or so many at random and what a search finds for the first
//
// Every member is found by itself, so that the search can be cut into parts in any way.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "generators/mt2203_table.hpp"
#include "mt2203_search.hpp"

using namespace mt2203_table;
using hvl::streams::mt2203_members;

namespace {

constexpr std::uint32_t members = std::size(mt2203_members);

twister listed(std::uint32_t member) {
  const auto& row = mt2203_members[member];
  return {row.matrix, row.tempering_b, row.tempering_c};
}

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

void write_line(std::uint32_t member, const twister& t) {
  std::printf("%u 0x%08X 0x%08X 0x%08X\n", member, t.a, t.b, t.c);
  std::fflush(stdout);
}

// The total defects as text: how many members have them up to each ten.
std::string distribution(const std::vector<twister>& all) {
  std::map<int, int> tens;
  std::vector<int> defects;
  for (const twister& t : all) {
    defects.push_back(total_defect(t));
    ++tens[(defects.back() + 9) / 10 * 10];
  }
  std::sort(defects.begin(), defects.end());
  std::ostringstream text;
  text << "//   " << defects.front() << " at least, " << defects[defects.size() / 2] << " in the middle, "
       << defects.back() << " at most; members up to each ten:\n//  ";
  for (const auto& [ten, count] : tens)
    text << " " << ten << ": " << count;
  text << "\n";
  return text.str();
}

void write_header() {
  std::vector<twister> all;
  std::uint32_t member;
  twister t;
  for (int rest; (rest = std::scanf("%u %x %x %x%*[^\n]", &member, &t.a, &t.b, &t.c)) == 4;) {
    if (member != all.size())
      throw std::runtime_error("line " + std::to_string(all.size()) + " is of another member");
    all.push_back(t);
  }
  if (all.size() != members)
    throw std::runtime_error("not the lines of all members");
  std::printf(
      R"(// The members of mt2203: twist constant and tempering masks. The table is our own, under these conditions:
//
// - The lower half of a twist constant is the member's index, so that no two members have the same characteristic
//   polynomial.
// - That polynomial, of degree 2203, is irreducible over GF(2): as 2^2203 - 1 is prime, the period is 2^2203 - 1.
// - The leading v bits of the output are equidistributed in k(v) dimensions, where 2203 / v rounded down is the most there
//   can be. What is missing, added up for v from 1 to 32, is at most %d:
%s//
// Found by tools/tables/mt2203_table.cpp with the seed %u; do not edit.
#pragma once

#include <cstdint>

namespace hvl::streams {

struct mt2203_member {
  std::uint32_t matrix, tempering_b, tempering_c;
};

// clang-format off
inline constexpr mt2203_member mt2203_members[%u] = {
)",
      most_defect, distribution(all).c_str(), static_cast<unsigned>(seed), members);
  for (std::size_t i = 0; i < all.size(); ++i)
    std::printf("%s{0x%08X, 0x%08X, 0x%08X},%s", i % 3 == 0 ? "    " : " ", all[i].a, all[i].b, all[i].c,
                i % 3 == 2 ? "\n" : "");
  std::printf("};\n// clang-format on\n\n} // namespace hvl::streams\n");
}

void check(std::uint32_t member) {
  const twister t = listed(member);
  const auto expect = [member](bool holds, const char* what) {
    if (!holds)
      throw std::runtime_error("member " + std::to_string(member) + ": " + what);
  };
  expect((t.a & 0xFFFF) == member, "the twist constant has another index");
  expect(irreducibility(t.a)(), "the characteristic polynomial is reducible");
  expect(total_defect(t) <= most_defect, "too great a defect");
}

void check_some(std::uint32_t count) {
  std::random_device random;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t member = std::uniform_int_distribution<std::uint32_t>(0, members - 1)(random);
    std::printf("member %u\n", member);
    check(member);
    if (i != 0)
      continue;
    const twister found = search_member(member), t = listed(member);
    if (found.a != t.a || found.b != t.b || found.c != t.c)
      throw std::runtime_error("the search finds another member");
  }
}

} // namespace

int main(int argc, char** argv) try {
  const std::string_view verb = argc > 1 ? argv[1] : "";
  const auto number = [argv](int i) {
    return static_cast<std::uint32_t>(std::strtoul(argv[i], nullptr, 10));
  };
  if (verb == "pool" && argc == 3) {
    write_pool(number(2));
  } else if (verb == "search" && argc == 4) {
    for (std::uint32_t member = number(2); member <= number(3); ++member)
      write_line(member, search_member(member));
  } else if (verb == "lines" && argc == 2) {
    for (std::uint32_t member = 0; member < members; ++member)
      write_line(member, listed(member));
  } else if (verb == "header" && argc == 2) {
    write_header();
  } else if (verb == "check" && argc == 2) {
    for (std::uint32_t member = 0; member < members; ++member)
      check(member);
  } else if (verb == "check" && argc == 3) {
    check_some(number(2));
  } else {
    std::fprintf(stderr, "mt2203_table pool COUNT | search FIRST LAST | lines | header | check [COUNT]\n");
    return 2;
  }
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
