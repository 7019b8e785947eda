#include "generators/entry.hpp"
#include "generators/split_mix.hpp"

namespace hvl::streams {
namespace {

template <class Engine>
struct mcg_generator {
  using type = Engine;
  using record = typename Engine::record;
  using word = typename Engine::word;

  static constexpr std::uint32_t words_per_thread = 1 << 16;
  static constexpr record_field fields[] = {{16, sizeof(word), 2}};

  static void set_state(record& r, word x) {
    r.a = Engine::multiplier;
    r.x = x;
  }

  // Small seeds as they are would begin near 0, and neighbouring ones stay in proportion.
  static int seed(record& r, std::uint64_t value) {
    set_state(r, Engine::state_from(split_mix64(value)()));
    return VQS_STATUS_OK;
  }

  // The list spells the state, low word first; words past the second are ignored.
  static int seed_words(record& r, std::span<const std::uint32_t> words) {
    const std::uint64_t low = words.empty() ? 0 : words[0];
    const std::uint64_t high = words.size() < 2 ? 0 : words[1];
    const word x = Engine::residue(high << 32 | low);
    set_state(r, x != 0 ? x : 1);
    return VQS_STATUS_OK;
  }

  static bool in_range(const record& r) { return Engine::is_value(r.x) && Engine::is_multiplier(r.a); }

  static void draw(record& r, word* out, std::size_t count) {
    const word a = r.a;
    word x = r.x;
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = x;
      x = Engine::product(x, a);
    }
    r.x = x;
  }

  static void advance(record& r, std::span<const std::uint64_t> count) {
    r.x = Engine::product(r.x, Engine::power_of(r.a, count));
  }

  static void leapfrog(record& r, std::uint64_t index, std::uint64_t stride) {
    advance(r, std::span(&index, 1));
    r.a = Engine::power_of(r.a, stride);
  }
};

} // namespace

const engine mcg31m1_engine = entry<mcg_generator<engines::mcg31m1>>();
const engine mcg59_engine = entry<mcg_generator<engines::mcg59>>();

} // namespace hvl::streams
