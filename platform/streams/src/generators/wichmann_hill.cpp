#include "hvl/engines/wichmann_hill.hpp"

#include "generators/entry.hpp"
#include "generators/split_mix.hpp"

namespace hvl::streams {
namespace {

struct generator {
  using type = engines::wichmann_hill;
  using record = type::record;

  static constexpr std::uint32_t words_per_thread = 1 << 16;
  static constexpr record_field fields[] = {{16, 4, 8}};

  // x(i, m) gives component i of the state.
  template <class Residue>
  static int set_state(record& r, const Residue& x) {
    for (int i = 0; i < 4; ++i) {
      r.a[i] = wichmann_hill_multipliers[engines::member_of<type>(r)][i];
      r.x[i] = static_cast<std::uint32_t>(x(static_cast<std::size_t>(i), type::modulus_of(r, i).value));
    }
    return VQS_STATUS_OK;
  }

  static int seed(record& r, std::uint64_t value) {
    split_mix64 random(value);
    return set_state(r, [&](std::size_t, std::uint64_t m) { return random() % (m - 1) + 1; });
  }

  // The list spells the state; missing words are 1, words past the fourth are ignored.
  static int seed_words(record& r, std::span<const std::uint32_t> words) {
    return set_state(r, [&](std::size_t i, std::uint32_t m) {
      const std::uint32_t x = i < words.size() ? words[i] % m : 1;
      return x != 0 ? x : 1;
    });
  }

  static bool in_range(const record& r) {
    for (int i = 0; i < 4; ++i) {
      const type::modulus m = type::modulus_of(r, i);
      if (!m.is_value(r.x[i]) || !m.is_value(r.a[i]))
        return false;
    }
    return true;
  }

  static void draw(record& r, std::uint32_t* out, std::size_t count) {
    type::state s = type::state_of(r);
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = s.output();
      s.step();
    }
    for (int i = 0; i < 4; ++i)
      r.x[i] = s.x[i];
  }

  static void advance(record& r, std::span<const std::uint64_t> count) {
    for (int i = 0; i < 4; ++i) {
      const type::modulus m = type::modulus_of(r, i);
      r.x[i] = m.product(r.x[i], m.power_of(r.a[i], count));
    }
  }

  static void leapfrog(record& r, std::uint64_t index, std::uint64_t stride) {
    advance(r, std::span(&index, 1));
    for (int i = 0; i < 4; ++i)
      r.a[i] = type::modulus_of(r, i).power_of(r.a[i], stride);
  }
};

} // namespace

const engine wichmann_hill_engine = entry<generator>();

} // namespace hvl::streams
