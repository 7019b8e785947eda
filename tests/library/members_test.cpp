// Engines with several members: each is chosen by its index, and copies and saved states are of the same member.
#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

// The sequence of the member with an identifier, by the stream library.
std::vector<std::uint32_t> words_of(std::int32_t identifier, std::size_t n) {
  vqs_stream stream = nullptr;
  EXPECT_EQ(vqsNewStream_64(&stream, identifier, 11), 0);
  std::vector<std::uint32_t> words(n);
  EXPECT_EQ(viRngUniformBits_64(0, stream, static_cast<std::int64_t>(n), words.data()), 0);
  EXPECT_EQ(vqsDeleteStream_64(&stream), 0);
  return words;
}

template <class Engine>
void expect_sequences_copies_and_states(std::int32_t identifier,
                                        std::initializer_list<std::uint32_t> members) {
  on_every_device([&](sycl::queue& queue) {
    for (const std::uint32_t member : members) {
      SCOPED_TRACE(member);
      const auto all = words_of(identifier + static_cast<std::int32_t>(member), 200);
      const std::vector<std::uint32_t> later(all.begin() + 100, all.end());
      Engine engine(queue, 11, member);
      expect_same(usm_values(bits<>(), engine, queue, 100),
                  std::vector<std::uint32_t>(all.begin(), all.begin() + 100));
      Engine copy = engine, assigned(queue, 1);
      assigned = engine;
      std::vector<unsigned char> state(static_cast<std::size_t>(get_state_size(engine)));
      save_state(engine, state.data());
      Engine loaded = load_state<Engine>(queue, state.data());
      for (Engine* one : {&engine, &copy, &assigned, &loaded})
        expect_same(usm_values(bits<>(), *one, queue, 100), later);
      if constexpr (skips<Engine>) {
        Engine skipped(queue, 11, member);
        skipped.skip_ahead(100);
        expect_same(usm_values(bits<>(), skipped, queue, 100), later);
      }
      const std::vector<std::uint32_t> seed{5, 6, 7, 8};
      Engine of_vector(queue, seed, member), of_list(queue, {5, 6, 7, 8}, member);
      expect_same(usm_values(bits<>(), of_vector, queue, 50), usm_values(bits<>(), of_list, queue, 50));
    }
    Engine first(queue, 11);
    expect_same(usm_values(bits<>(), first, queue, 50), words_of(identifier, 50));
  });
}

TEST(members_test, have_their_sequences_copies_and_states) {
  expect_sequences_copies_and_states<wichmann_hill>(VQS_ENGINE_WICHMANN_HILL, {0, 1, 136, 272});
  expect_sequences_copies_and_states<mt2203>(VQS_ENGINE_MT2203, {0, 1, 3000, 6023});
}

template <class Engine>
void expect_refusals(const std::string& text) {
  const std::vector<std::uint32_t> seed{5, 6};
  on_every_device([&](sycl::queue& queue) {
    for (const std::uint32_t member : {Engine::members, 0x80000000u, 0xFFFFFFFFu}) {
      EXPECT_EQ(refusal<invalid_argument>([&] { Engine(queue, 1, member); }), text);
      EXPECT_EQ(refusal<invalid_argument>([&] { Engine(queue, seed, member); }), text);
      EXPECT_EQ(refusal<invalid_argument>([&] { Engine(queue, {5, 6}, member); }), text);
    }
  });
}

TEST(members_test, end_at_the_last_index) {
  expect_refusals<wichmann_hill>(
      "kestro::hvl::rng::wichmann_hill: invalid argument: engine_idx is out of range [0, 273)");
  expect_refusals<mt2203>("kestro::hvl::rng::mt2203: invalid argument: engine_idx is out of range [0, 6024)");
}

// What `engines` of one member each give, dealt in turn in groups.
template <class Distribution>
auto dealt(const Distribution& distribution, std::vector<mt2203> engines, sycl::queue& queue,
           std::size_t group, std::size_t n) {
  std::vector<typename Distribution::result_type> values;
  while (values.size() < n)
    for (mt2203& engine : engines)
      for (const auto value : usm_values(distribution, engine, queue, static_cast<std::int64_t>(group)))
        values.push_back(value);
  values.resize(n);
  return values;
}

TEST(several_members, deal_their_values_in_turn) {
  const std::vector<std::uint32_t> members{7, 6023, 0, 100, 99};
  on_every_device([&](sycl::queue& queue) {
    std::vector<mt2203> engines;
    for (const std::uint32_t member : members)
      engines.emplace_back(queue, 11, member);
    const auto check = [&](const auto& distribution, std::size_t group, std::initializer_list<int> calls) {
      mt2203 engine(queue, 11, members), used(queue, 3, {1, 2});
      usm_values(distribution, used, queue, 3);
      const auto expected = dealt(distribution, engines, queue, group, 1300);
      std::decay_t<decltype(expected)> values;
      const auto append = [&values](const auto& more) {
        values.insert(values.end(), more.begin(), more.end());
      };
      bool into_buffer = false;
      for (const int n : calls) {
        append(into_buffer ? buffer_values(distribution, engine, n)
                           : usm_values(distribution, engine, queue, n));
        into_buffer = !into_buffer;
      }
      mt2203 copy = engine;
      used = engine;
      mt2203 moved = std::move(engine);
      const auto rest = static_cast<std::int64_t>(expected.size() - values.size());
      const auto last = usm_values(distribution, moved, queue, rest);
      expect_same(usm_values(distribution, copy, queue, rest), last);
      expect_same(usm_values(distribution, used, queue, rest), last);
      append(last);
      expect_same(values, expected);
    };
    check(bits<>(), 1, {1, 4, 0, 6, 300});
    check(uniform<double>(-1, 1), 1, {3, 64});
    check(gaussian<float, gaussian_method::box_muller>(), 1, {1, 77});
    check(gaussian<double, gaussian_method::box_muller2>(), 2, {2, 6, 14});
  });
}

TEST(several_members, are_in_the_list_once_and_cannot_be_saved) {
  on_every_device([](sycl::queue& queue) {
    const auto refused = [&](const std::vector<std::uint32_t>& members) {
      return refusal<invalid_argument>([&] { mt2203(queue, 1, members); });
    };
    const std::string start = "kestro::hvl::rng::mt2203: invalid argument: engine_idx ";
    EXPECT_EQ(refused({}), start + "is empty");
    EXPECT_EQ(refused({3, 5, 3}), start + "has an index twice");
    EXPECT_EQ(refused({3, 6024}), start + "is out of range [0, 6024)");

    mt2203 engine(queue, 11, {3, 5});
    const auto expected = [&] {
      mt2203 copy = engine;
      return usm_values(bits<>(), copy, queue, 20);
    }();
    const std::string text =
        "kestro::hvl::rng::save_state: computation error:  does not support multi-state mt2203";
    std::vector<unsigned char> state(static_cast<std::size_t>(get_state_size(engine)), 0xA5);
    const auto untouched = state;
    EXPECT_EQ(refusal<computation_error>([&] { save_state(engine, state.data()); }), text);
    EXPECT_EQ(refusal<computation_error>([&] { save_state(engine, "/nowhere/state"); }), text);
    EXPECT_EQ(state, untouched);
    expect_same(usm_values(bits<>(), engine, queue, 20), expected);

    mt2203 one(queue, 11, std::vector<std::uint32_t>{5});
    save_state(one, state.data());
    mt2203 loaded = load_state<mt2203>(queue, state.data());
    expect_same(usm_values(bits<>(), loaded, queue, 50), words_of(VQS_ENGINE_MT2203 + 5, 50));
  });
}

TEST(several_members, are_in_order_and_may_end_with_work_in_flight) {
  on_every_device([](sycl::queue& queue) {
    constexpr std::int64_t n = 20'000;
    std::uint32_t* const memory = sycl::malloc_shared<std::uint32_t>(2 * n, queue);
    {
      mt2203 engine(queue, 11, {3, 5, 8});
      generate(bits<>(), engine, n, memory);
      generate(bits<>(), engine, n, memory + n);
    }
    queue.wait();
    mt2203 engine(queue, 11, {3, 5, 8});
    expect_same(std::vector<std::uint32_t>(memory, memory + 2 * n),
                usm_values(bits<>(), engine, queue, 2 * n));
    sycl::free(memory, queue);
  });
}

} // namespace
} // namespace kestro::hvl::rng::test
