// The engines against answers of independent origin, kept as data; each file says where its answers come
// from.
#include <algorithm>
#include <fstream>
#include <sstream>

#include "support.hpp"

namespace hvl::streams::test {
namespace {

struct known_answer {
  std::string line;
  std::int32_t member = 0;
  std::vector<std::uint32_t> words; // seed words; a single seed when `one_seed`
  bool one_seed = false;
  std::uint64_t seed = 0;
  std::vector<std::uint64_t> skip;
  std::vector<std::uint32_t> bits;
};

known_answer parsed(const std::string& line) {
  known_answer answer;
  answer.line = line;
  std::istringstream in(line);
  std::string key;
  for (std::string token; in >> token;) {
    if (token.back() == ':') {
      key = token;
      answer.one_seed = answer.one_seed || key == "seed:";
    } else if (key == "member:") {
      answer.member = std::stoi(token);
    } else if (key == "words:") {
      answer.words.push_back(static_cast<std::uint32_t>(std::stoul(token, nullptr, 16)));
    } else if (key == "seed:") {
      answer.seed = std::stoull(token);
    } else if (key == "skip:") {
      answer.skip.push_back(std::stoull(token));
    } else if (key == "bits:") {
      answer.bits.push_back(static_cast<std::uint32_t>(std::stoul(token, nullptr, 16)));
    } else {
      ADD_FAILURE() << "not a known answer: " << line;
    }
  }
  return answer;
}

std::vector<known_answer> known_answers(const char* engine) {
  std::ifstream file(std::string(KNOWN_ANSWERS_DIR "/") + engine + ".txt");
  EXPECT_TRUE(file) << "no known answers for " << engine;
  std::vector<known_answer> answers;
  for (std::string line; std::getline(file, line);)
    if (!line.empty() && line[0] != '#')
      answers.push_back(parsed(line));
  return answers;
}

class known_answers_suite : public each_engine {};

TEST_P(known_answers_suite, agree_at_every_offset_and_length) {
  const auto answers = known_answers(GetParam().name);
  ASSERT_GE(answers.size(), 3u);
  for_every_mode([&] {
    for (const known_answer& answer : answers) {
      SCOPED_TRACE(answer.line.substr(0, 100));
      const auto fresh = [&] {
        const std::int32_t member = id() + answer.member;
        owned_stream stream =
            answer.one_seed ? owned_stream(member, answer.seed) : owned_stream(member, answer.words);
        stream.skip_words(answer.skip);
        return stream;
      };
      ASSERT_GE(answer.bits.size(), 4u);
      expect_equal(fresh().bits(answer.bits.size()), answer.bits);
      // at the head of a request that the SIMD path serves
      auto longer = fresh().bits(5000);
      longer.resize(answer.bits.size());
      expect_equal(longer, answer.bits);
      for (std::size_t offset = 1; offset < std::min<std::size_t>(answer.bits.size(), 9); ++offset) {
        auto rest = fresh().skip(offset).bits(5000);
        rest.resize(answer.bits.size() - offset);
        expect_equal(rest, {answer.bits.begin() + static_cast<std::ptrdiff_t>(offset), answer.bits.end()});
      }
    }
  });
}

HVL_STREAMS_FOR_EACH_ENGINE(known_answers_suite);

} // namespace
} // namespace hvl::streams::test
