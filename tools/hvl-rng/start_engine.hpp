// The making of an engine from the program's options.
#pragma once

#include "catalogue.hpp"
#include "command_numbers.hpp"
#include "failure.hpp"

#include <kestro/hvl/rng.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace hvl_rng {

constexpr std::uint64_t largest_word = std::numeric_limits<std::uint32_t>::max();

// Braces refuse narrowing, so this tells engines seeded by 64 bits from those seeded by 32.
template <class Engine>
constexpr bool takes_64_bits = requires(sycl::queue queue, std::uint64_t seed) {
  Engine{queue, seed};
};

template <class Engine>
constexpr bool takes_member = std::is_constructible_v<Engine, sycl::queue, std::uint64_t, std::uint32_t>;

template <class Engine>
constexpr bool takes_mode =
    std::is_constructible_v<Engine, sycl::queue, std::uint32_t, kestro::hvl::rng::mrg32k3a_mode::optimal>;

// `form` is what an engine's constructor takes after the seed.
template <class Engine, class... Form>
Engine seed_engine(const sycl::queue& queue, const char* name, const std::vector<std::uint64_t>& seed,
                   Form... form) {
  const bool is_list = seed.size() > 1;
  for (std::uint64_t word : seed)
    if ((is_list || !takes_64_bits<Engine>)&&word > largest_word)
      throw failure(exit_status::usage,
                    fmt::format("--seed {}: the {} of {} 32 bits (at most {})", word,
                                is_list ? "words" : "seed",
                                is_list ? "a list have" : fmt::format("{} has", name), largest_word));
  if (is_list) {
    std::vector<std::uint32_t> words;
    std::transform(seed.begin(), seed.end(), std::back_inserter(words),
                   [](std::uint64_t word) { return static_cast<std::uint32_t>(word); });
    return Engine(queue, words, form...);
  }
  using single = std::conditional_t<takes_64_bits<Engine>, std::uint64_t, std::uint32_t>;
  return Engine(queue, static_cast<single>(seed.at(0)), form...);
}

// Throws `failure` for an engine that has no skips.
template <class Engine>
void skip(Engine& engine, const std::string& name, std::uint64_t words) {
  if constexpr (requires { engine.skip_ahead(words); })
    engine.skip_ahead(words);
  else
    throw failure(exit_status::usage, fmt::format("--skip {}: {} cannot skip", words, name));
}

// Throws `failure` naming the option that the engine does not have or refuses. Compiled once for all distributions.
template <class Engine>
[[gnu::noinline]] Engine make_engine(const sycl::queue& queue, const char* name, const engine_start& start) {
  if (start.member && !takes_member<Engine>)
    throw failure(exit_status::usage, fmt::format("--member {}: {} has no members", *start.member, name));
  if (!start.mode.empty() && !takes_mode<Engine>)
    throw failure(exit_status::usage, fmt::format("--mode {}: {} has no modes", start.mode, name));
  if constexpr (takes_member<Engine>) {
    if (start.member)
      try {
        const auto member = static_cast<std::uint32_t>(std::min(*start.member, largest_word));
        return seed_engine<Engine>(queue, name, start.seed, member);
      } catch (const kestro::hvl::invalid_argument& refused) {
        throw failure(exit_status::usage, fmt::format("--member {}: {}", *start.member, refused.what()));
      }
  }
  if constexpr (takes_mode<Engine>) {
    namespace mode = kestro::hvl::rng::mrg32k3a_mode;
    const std::string custom = "custom:";
    if (start.mode == "optimal")
      return seed_engine<Engine>(queue, name, start.seed, mode::optimal());
    if (start.mode.starts_with(custom)) {
      const std::uint64_t substreams = read_count("--mode custom:N", start.mode.substr(custom.size()));
      if (substreams > largest_word)
        throw failure(exit_status::usage,
                      fmt::format("--mode {}: at most {} substreams", start.mode, largest_word));
      return seed_engine<Engine>(queue, name, start.seed,
                                 mode::custom{static_cast<std::uint32_t>(substreams)});
    }
    if (!start.mode.empty() && start.mode != "standard")
      throw failure(exit_status::usage,
                    fmt::format("--mode {}: not one of standard, optimal, custom:N", start.mode));
  }
  try {
    return seed_engine<Engine>(queue, name, start.seed);
  } catch (const kestro::hvl::invalid_argument& refused) {
    throw failure(exit_status::usage, fmt::format("--seed {}: {}", start.seed.front(), refused.what()));
  }
}

} // namespace hvl_rng
