// Known answers of independent origin through both devices, both forms and every instruction set.
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

struct known_answer {
  std::string line;
  std::uint32_t member = 0;
  std::vector<std::uint32_t> words;
  std::optional<std::uint64_t> seed;
  std::vector<std::uint64_t> skip;
  std::vector<std::uint32_t> bits;
};

std::vector<known_answer> known_answers(const std::string& engine) {
  std::ifstream file(std::string(KNOWN_ANSWERS_DIR "/") + engine + ".txt");
  std::vector<known_answer> answers;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#')
      continue;
    known_answer answer;
    answer.line = line.substr(0, 90);
    std::istringstream in(line);
    std::string key;
    for (std::string token; in >> token;) {
      if (token.back() == ':')
        key = token;
      else if (key == "member:")
        answer.member = static_cast<std::uint32_t>(std::stoul(token));
      else if (key == "words:")
        answer.words.push_back(static_cast<std::uint32_t>(std::stoul(token, nullptr, 16)));
      else if (key == "seed:")
        answer.seed = std::stoull(token);
      else if (key == "skip:")
        answer.skip.push_back(std::stoull(token));
      else if (key == "bits:")
        answer.bits.push_back(static_cast<std::uint32_t>(std::stoul(token, nullptr, 16)));
    }
    answers.push_back(answer);
  }
  return answers;
}

template <class Engine>
concept has_wide_seeds = requires(const sycl::queue& queue, std::uint64_t seed) {
  Engine{queue, seed};
};
template <class Engine, class Seed>
concept has_members = requires(const sycl::queue& queue, const Seed& seed, std::uint32_t member) {
  Engine(queue, seed, member);
};

// Skips of several words are checked against skips in steps; an engine without skips is asked at its start.
template <class Engine>
bool is_offered(const known_answer& answer) {
  const bool is_narrow = !answer.seed || *answer.seed <= std::numeric_limits<std::uint32_t>::max();
  const bool is_reached = skips<Engine> || answer.skip.empty() || answer.skip[0] == 0;
  return answer.skip.size() < 2 && is_reached && (has_wide_seeds<Engine> || is_narrow);
}

template <class Engine, class Seed>
Engine member_of(const sycl::queue& queue, const Seed& seed, std::uint32_t member) {
  if constexpr (has_members<Engine, Seed>)
    return Engine(queue, seed, member);
  else
    return Engine(queue, seed);
}

template <class Engine>
Engine engine_of(const sycl::queue& queue, const known_answer& answer) {
  using seed_type = std::conditional_t<has_wide_seeds<Engine>, std::uint64_t, std::uint32_t>;
  Engine engine = answer.seed ? member_of<Engine>(queue, static_cast<seed_type>(*answer.seed), answer.member)
                              : member_of<Engine>(queue, answer.words, answer.member);
  if constexpr (skips<Engine>)
    if (!answer.skip.empty())
      engine.skip_ahead(answer.skip[0]);
  return engine;
}

template <class Engine>
class known_answers_test : public ::testing::Test {};
TYPED_TEST_SUITE(known_answers_test, all_engines, engine_names);

TYPED_TEST(known_answers_test, hold_on_every_device_form_and_instruction_set) {
  auto answers = known_answers(engine_names::GetName<TypeParam>(0));
  std::erase_if(answers, [](const known_answer& answer) { return !is_offered<TypeParam>(answer); });
  ASSERT_FALSE(answers.empty());
  under_every_instruction_set([&] {
    on_every_device([&](sycl::queue& queue) {
      for (const known_answer& answer : answers) {
        SCOPED_TRACE(answer.line);
        auto engine = engine_of<TypeParam>(queue, answer);
        auto again = engine;
        const auto n = static_cast<std::int64_t>(answer.bits.size());
        expect_same(usm_values(bits<>(), engine, queue, n), answer.bits);
        expect_same(buffer_values(bits<>(), again, n), answer.bits);
      }
    });
  });
}

} // namespace
} // namespace kestro::hvl::rng::test
