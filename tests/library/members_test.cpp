// Engines with several members: each is chosen by its index, and copies and saved states are of the same member.
#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

// The member's sequence, by the stream library.
std::vector<std::uint32_t> words_of_member(std::uint32_t member, std::size_t n) {
  vqs_stream stream = nullptr;
  EXPECT_EQ(vqsNewStream_64(&stream, VQS_ENGINE_WICHMANN_HILL + static_cast<std::int32_t>(member), 11), 0);
  std::vector<std::uint32_t> words(n);
  EXPECT_EQ(viRngUniformBits_64(0, stream, static_cast<std::int64_t>(n), words.data()), 0);
  EXPECT_EQ(vqsDeleteStream_64(&stream), 0);
  return words;
}

TEST(members_test, of_wichmann_hill_have_their_sequences_copies_and_states) {
  on_every_device([](sycl::queue& queue) {
    for (const std::uint32_t member : {0u, 1u, 136u, 272u}) {
      SCOPED_TRACE(member);
      const auto all = words_of_member(member, 200);
      const std::vector<std::uint32_t> later(all.begin() + 100, all.end());
      wichmann_hill engine(queue, 11, member);
      expect_same(usm_values(bits<>(), engine, queue, 100),
                  std::vector<std::uint32_t>(all.begin(), all.begin() + 100));
      wichmann_hill copy = engine, assigned(queue, 1);
      assigned = engine;
      std::vector<unsigned char> state(static_cast<std::size_t>(get_state_size(engine)));
      save_state(engine, state.data());
      wichmann_hill loaded = load_state<wichmann_hill>(queue, state.data());
      wichmann_hill skipped(queue, 11, member);
      skipped.skip_ahead(100);
      for (wichmann_hill* one : {&engine, &copy, &assigned, &loaded, &skipped})
        expect_same(usm_values(bits<>(), *one, queue, 100), later);
      const std::vector<std::uint32_t> seed{5, 6, 7, 8};
      wichmann_hill of_vector(queue, seed, member), of_list(queue, {5, 6, 7, 8}, member);
      expect_same(usm_values(bits<>(), of_vector, queue, 50), usm_values(bits<>(), of_list, queue, 50));
    }
    wichmann_hill first(queue, 11);
    expect_same(usm_values(bits<>(), first, queue, 50), words_of_member(0, 50));
  });
}

TEST(members_test, end_at_the_last_index) {
  const std::string text =
      "kestro::hvl::rng::wichmann_hill: invalid argument: engine_idx is out of range [0, 273)";
  const std::vector<std::uint32_t> seed{5, 6};
  on_every_device([&](sycl::queue& queue) {
    for (const std::uint32_t member : {273u, 0x80000000u, 0xFFFFFFFFu}) {
      EXPECT_EQ(refusal<invalid_argument>([&] { wichmann_hill(queue, 1, member); }), text);
      EXPECT_EQ(refusal<invalid_argument>([&] { wichmann_hill(queue, seed, member); }), text);
      EXPECT_EQ(refusal<invalid_argument>([&] { wichmann_hill(queue, {5, 6}, member); }), text);
    }
  });
}

} // namespace
} // namespace kestro::hvl::rng::test
