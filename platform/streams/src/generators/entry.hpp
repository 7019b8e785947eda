// From an engine's functions on its record to its entry in the list.
#pragma once

#include <array>

#include "engine.hpp"

namespace hvl::streams {

// Generator has, static:
//
//   using type = engines::...;
//   std::uint32_t words_per_thread;
//   record_field fields[];
//   int seed(record&, std::uint64_t seed);                        a status
//   int seed_words(record&, std::span<const std::uint32_t>);      both of a record_pointer& where it has tables
//   bool in_range(const record&);
//   void draw(record&, word* out, std::size_t count);
//   void advance(record&, std::span<const std::uint64_t> count);
//   void leapfrog(record&, std::uint64_t index, std::uint64_t stride);   where the engine has it
//   record_tables tables;                                                where the engine has them
template <class Generator>
constexpr engine entry() {
  using type = typename Generator::type;
  using record = typename type::record;
  constexpr bool has_tables = requires {
    Generator::tables;
  };
  engine e{
      type::about,
      sizeof(record),
      Generator::words_per_thread,
      Generator::fields,
      [](record_pointer& r, std::uint64_t seed) {
        if constexpr (has_tables)
          return Generator::seed(r, seed);
        else
          return Generator::seed(*static_cast<record*>(r.get()), seed);
      },
      [](record_pointer& r, std::span<const std::uint32_t> words) {
        if constexpr (has_tables)
          return Generator::seed_words(r, words);
        else
          return Generator::seed_words(*static_cast<record*>(r.get()), words);
      },
      [](const void* r) noexcept { return Generator::in_range(*static_cast<const record*>(r)); },
      [](void* r, void* words, std::size_t count) noexcept {
        Generator::draw(*static_cast<record*>(r), static_cast<typename type::word*>(words), count);
      },
      [](void* r, std::span<const std::uint64_t> count) {
        Generator::advance(*static_cast<record*>(r), count);
      },
      nullptr,
      nullptr,
  };
  if constexpr (has_tables)
    e.tables = &Generator::tables;
  if constexpr (type::about.has_leapfrog)
    e.leapfrog = [](void* r, std::uint64_t index, std::uint64_t stride) noexcept {
      Generator::leapfrog(*static_cast<record*>(r), index, stride);
    };
  return e;
}

// A seed as a list of two words, the low one first.
constexpr std::array<std::uint32_t, 2> words_of_seed(std::uint64_t seed) {
  return {static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32)};
}

} // namespace hvl::streams
