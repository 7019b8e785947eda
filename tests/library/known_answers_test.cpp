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

// Engines of the interface take lists of fixed length; the words of an answer come in several lengths.
template <class Engine>
std::optional<Engine> from_words(const sycl::queue& queue, const std::vector<std::uint32_t>& w) {
  switch (w.size()) {
  case 1:
    return Engine(queue, {w[0]});
  case 2:
    return Engine(queue, {w[0], w[1]});
  case 3:
    return Engine(queue, {w[0], w[1], w[2]});
  case 4:
    return Engine(queue, {w[0], w[1], w[2], w[3]});
  case 6:
    return Engine(queue, {w[0], w[1], w[2], w[3], w[4], w[5]});
  default:
    return std::nullopt;
  }
}

// Two words an element. The CPU device reads as many words as there are elements, so elements are added.
template <>
std::optional<philox4x32x10> from_words(const sycl::queue& queue, const std::vector<std::uint32_t>& w) {
  if (w.size() != 6)
    return std::nullopt;
  const auto joined = [&](std::size_t i) { return std::uint64_t{w[i + 1]} << 32 | w[i]; };
  return philox4x32x10(queue, {joined(0), joined(2), joined(4), 0, 0, 0});
}

template <>
std::optional<mcg31m1> from_words(const sycl::queue&, const std::vector<std::uint32_t>&) {
  return std::nullopt;
}

template <>
std::optional<mcg59> from_words(const sycl::queue&, const std::vector<std::uint32_t>&) {
  return std::nullopt;
}

template <class Engine>
std::optional<Engine> engine_of(const sycl::queue& queue, const known_answer& answer) {
  using seed_type = std::conditional_t<std::is_same_v<Engine, philox4x32x10> || std::is_same_v<Engine, mcg59>,
                                       std::uint64_t, std::uint32_t>;
  if (answer.seed && *answer.seed > std::numeric_limits<seed_type>::max())
    return std::nullopt;
  std::optional<Engine> engine =
      answer.seed ? std::optional<Engine>(Engine(queue, static_cast<seed_type>(*answer.seed)))
                  : from_words<Engine>(queue, answer.words);
  if (engine && !answer.skip.empty())
    engine->skip_ahead(answer.skip[0]);
  return engine;
}

template <class Engine>
class known_answers_test : public ::testing::Test {};
TYPED_TEST_SUITE(known_answers_test, all_engines, engine_names);

TYPED_TEST(known_answers_test, hold_on_every_device_form_and_instruction_set) {
  const auto answers = known_answers(engine_names::GetName<TypeParam>(0));
  std::size_t checked = 0;
  under_every_instruction_set([&] {
    on_every_device([&](sycl::queue& queue) {
      for (const known_answer& answer : answers) {
        SCOPED_TRACE(answer.line);
        if (answer.skip.size() > 1)
          continue; // skips of several words are checked against skips in steps
        auto engine = engine_of<TypeParam>(queue, answer);
        if (!engine)
          continue;
        ++checked;
        const auto n = static_cast<std::int64_t>(answer.bits.size());
        TypeParam again = *engine;
        expect_same(usm_values(bits<>(), *engine, queue, n), answer.bits);
        expect_same(buffer_values(bits<>(), again, n), answer.bits);
      }
    });
  });
  EXPECT_GE(checked, 6u);
}

} // namespace
} // namespace kestro::hvl::rng::test
