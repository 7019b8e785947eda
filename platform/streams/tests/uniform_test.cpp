// The uniform family against its definition, written out here once more in exact or wider arithmetic.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>

#include "engine.hpp"
#include "support.hpp"

namespace hvl::streams::test {
namespace {

constexpr std::size_t count = 4099;

// Where the sequence of owned_stream's seed has a word so great that float scales it to 9 on [1, 9).
const std::map<std::int32_t, std::uint64_t> position_of_a_greatest_word = {
    {VQS_ENGINE_PHILOX4X32X10, 20180005}, {VQS_ENGINE_MRG32K3A, 82942356},
    {VQS_ENGINE_MCG31M1, 8342607},        {VQS_ENGINE_MCG59, 8974830},
    {VQS_ENGINE_MT19937, 8366988},        {VQS_ENGINE_ARS5, 32301534},
    {VQS_ENGINE_WICHMANN_HILL, 7312383},  {VQS_ENGINE_R250, 4355095},
    {VQS_ENGINE_SFMT19937, 3324327},      {VQS_ENGINE_SOBOL, 246065831},
    {VQS_ENGINE_NIEDERREITER, 246065831}, {VQS_ENGINE_MT2203, 6243427},
};

// A word of any engine and the constants by which its engine scales it.
struct raw_word {
  std::int64_t value;
};

class uniform_family : public each_engine {
 protected:
  // The raw words from a position on, 59-bit ones whole.
  std::vector<raw_word> words(std::size_t n, std::uint64_t from = 0) const {
    const run_mode mode(HVL_ISA_SCALAR, 1);
    std::vector<raw_word> raw;
    owned_stream stream(id());
    stream.skip(from);
    for (std::size_t i = 0; i < n; ++i) {
      if (id() == VQS_ENGINE_MCG59) {
        raw.push_back(
            {static_cast<std::int64_t>(static_cast<vqs_mcg59_record*>(static_cast<vqs_stream>(stream))->x)});
        stream.skip(1);
      } else {
        const std::uint32_t w = stream.bits(1)[0];
        const bool is_signed = GetParam().about.kind == engines::word_kind::signed32;
        raw.push_back({is_signed ? static_cast<std::int64_t>(static_cast<std::int32_t>(w))
                                 : static_cast<std::int64_t>(w)});
      }
    }
    return raw;
  }

  template <class T>
  T scaled(raw_word word, T a, T b) const {
    T scale = 0;
    T shift = a;
    switch (id()) {
    case VQS_ENGINE_MCG31M1:
      scale = (b - a) * static_cast<T>(4.656612875245797e-10);
      break;
    case VQS_ENGINE_MRG32K3A:
      scale = (b - a) * static_cast<T>(2.328306549295728e-10);
      break;
    case VQS_ENGINE_MCG59:
      scale = (b - a) * static_cast<T>(1.734723475976807e-18);
      break;
    case VQS_ENGINE_SOBOL:
    case VQS_ENGINE_NIEDERREITER:
      scale = (b - a) * static_cast<T>(2.3283064365386963e-10);
      break;
    default:
      scale = (b - a) * static_cast<T>(sizeof(T) == 4 ? 2.3283064e-10f : 2.3283064365386963e-10);
      shift = (b + a) * static_cast<T>(0.5);
    }
    volatile T product = static_cast<T>(word.value) * scale; // no contraction
    return product + shift;
  }

  // floor, then rint, then the nearest integer that is representable and in [a, b).
  template <class T, class Integer>
  Integer integer(raw_word word, Integer a, Integer b) const {
    const double v =
        std::rint(std::floor(static_cast<double>(scaled<T>(word, static_cast<T>(a), static_cast<T>(b)))));
    const double least = static_cast<double>(std::numeric_limits<Integer>::min());
    double most = static_cast<double>(std::numeric_limits<Integer>::max());
    if (sizeof(T) == 4)
      most = static_cast<double>(std::nextafter(static_cast<float>(most), 0.0f));
    return std::clamp(static_cast<Integer>(std::fmin(std::fmax(v, least), most)), a, b - 1);
  }

  // Integers of both methods from the words of that position on.
  void check_integers(auto generate, auto a, auto b, const std::vector<raw_word>& raw,
                      std::uint64_t from = 0) const {
    using integer_type = decltype(a);
    SCOPED_TRACE(std::to_string(a) + " to " + std::to_string(b));
    std::vector<integer_type> standard, accurate;
    for (const raw_word word : raw) {
      standard.push_back(integer<float>(word, a, b));
      accurate.push_back(integer<double>(word, a, b));
    }
    const auto check = [&](std::int64_t method, const std::vector<integer_type>& expected) {
      std::vector<integer_type> values(raw.size(), b);
      ASSERT_EQ(generate(method, owned_stream(id()).skip(from), static_cast<std::int64_t>(values.size()),
                         values.data(), a, b),
                VQS_STATUS_OK);
      expect_equal(values, expected);
    };
    for_every_mode([&] {
      check(VQS_METHOD_UNIFORM_STANDARD, standard);
      check(VQS_METHOD_UNIFORM_ACCURATE, accurate);
    });
  }
};

template <class T>
void expect_same_bits(const std::vector<T>& actual, const std::vector<T>& expected) {
  for (std::size_t i = 0; i < expected.size(); ++i)
    ASSERT_EQ(std::memcmp(&actual[i], &expected[i], sizeof(T)), 0)
        << "at " << i << ": " << actual[i] << " for " << expected[i];
}

TEST_P(uniform_family, real_values_follow_the_definition_bit_for_bit) {
  const auto raw = words(count);
  const auto check = [&]<class T>(auto generate, T a, T b) {
    SCOPED_TRACE(std::to_string(a) + " to " + std::to_string(b));
    std::vector<T> standard(count), accurate(count);
    for (std::size_t i = 0; i < count; ++i) {
      standard[i] = scaled(raw[i], a, b);
      accurate[i] = std::fmin(std::fmax(standard[i], a), b);
    }
    for_every_mode([&] {
      for (const std::int64_t method : {VQS_METHOD_UNIFORM_STANDARD, VQS_METHOD_UNIFORM_ACCURATE}) {
        std::vector<T> values(count, static_cast<T>(-1e30));
        owned_stream stream(id());
        ASSERT_EQ(generate(method, stream, 77, values.data(), a, b), VQS_STATUS_OK);
        ASSERT_EQ(generate(method, stream, count - 77, values.data() + 77, a, b), VQS_STATUS_OK);
        expect_same_bits(values, method == 0 ? standard : accurate);
      }
    });
  };
  for (const auto& [a, b] :
       {std::pair{0.0, 1.0}, {-1.0, 1.0}, {1e6, 1e6 + 1}, {-3.25, 1e-3}, {1e-30, 3e-30}}) {
    check(vsRngUniform_64, static_cast<float>(a), static_cast<float>(b));
    check(vdRngUniform_64, a, b);
  }
  // so narrow that rounding carries values of the standard method outside
  check(vsRngUniform_64, 1.0f, std::nextafter(1.0f, 2.0f));
  check(vdRngUniform_64, 1.0, std::nextafter(1.0, 2.0));
}

using signed_limits = std::numeric_limits<std::int32_t>;

TEST_P(uniform_family, integers_follow_the_definition) {
  const auto raw = words(count);
  check_integers(viRngUniform_64, 0, 10, raw);
  check_integers(viRngUniform_64, -3, 4, raw);
  check_integers(viRngUniform_64, signed_limits::min(), signed_limits::max(), raw);
  check_integers(viRngUniform_64, signed_limits::max() - 100, signed_limits::max(), raw);
  check_integers(viRngUniform_64, signed_limits::min(), signed_limits::min() + 100, raw);
  check_integers(viRngUniformU_64, 0u, 10u, raw);
  check_integers(viRngUniformU_64, 0u, 0xFFFFFFFFu, raw);
  check_integers(viRngUniformU_64, 0xFFFFFF00u, 0xFFFFFFFFu, raw);
  check_integers(viRngUniformU_64, 0x7FFFFF00u, 0x80000100u, raw);
}

// In float the greatest words scale to b itself; beyond 2^24 neither end need be a float.
TEST_P(uniform_family, integers_stay_in_their_interval) {
  const std::uint64_t at = position_of_a_greatest_word.at(id());
  const auto raw = words(67, at);
  ASSERT_EQ(scaled(raw[0], 1.0f, 9.0f), 9.0f);
  check_integers(viRngUniform_64, 1, 9, raw, at);
  check_integers(viRngUniform_64, 0, 10, raw, at);
  check_integers(viRngUniform_64, -10, 0, raw, at);
  check_integers(viRngUniform_64, 16777217, 16777218, raw, at);
  check_integers(viRngUniform_64, -16777219, -16777217, raw, at);
  check_integers(viRngUniform_64, 0, signed_limits::max(), raw, at);
  check_integers(viRngUniform_64, signed_limits::min(), signed_limits::min() + 1, raw, at);
  check_integers(viRngUniform_64, signed_limits::max() - 1, signed_limits::max(), raw, at);
  check_integers(viRngUniformU_64, 0u, 10u, raw, at);
  check_integers(viRngUniformU_64, 16777217u, 16777218u, raw, at);
  check_integers(viRngUniformU_64, 0x7FFFFFFFu, 0x80000001u, raw, at);
  check_integers(viRngUniformU_64, 0xFFFFFFFEu, 0xFFFFFFFFu, raw, at);
}

TEST_P(uniform_family, bits_of_both_widths_are_made_of_the_words) {
  constexpr std::size_t n = 3001;
  const auto raw = words(2 * n);
  const bool wide = id() == VQS_ENGINE_MCG59;
  const auto word = [&](std::size_t i) {
    return static_cast<std::uint32_t>(wide ? raw[i].value >> 27 : raw[i].value);
  };
  const bool served = GetParam().about.has_uniform_bits;
  std::vector<std::uint32_t> expected32(n);
  std::vector<std::uint64_t> expected64(n);
  for (std::size_t i = 0; i < n; ++i) {
    expected32[i] = word(i);
    expected64[i] = word(2 * i) | std::uint64_t{word(2 * i + 1)} << 32;
  }
  for_every_mode([&] {
    expect_equal(owned_stream(id()).bits(n), expected32);
    if (!served)
      return;
    std::vector<std::uint32_t> values32(n, 1);
    ASSERT_EQ(viRngUniformBits32_64(0, owned_stream(id()), n, values32.data()), VQS_STATUS_OK);
    expect_equal(values32, expected32);
    std::vector<std::uint64_t> values64(n, 1);
    owned_stream stream(id());
    ASSERT_EQ(viRngUniformBits64_64(0, stream, 5, values64.data()), VQS_STATUS_OK);
    ASSERT_EQ(viRngUniformBits64_64(0, stream, n - 5, values64.data() + 5), VQS_STATUS_OK);
    expect_equal(values64, expected64);
    EXPECT_EQ(stream.saved(), owned_stream(id()).skip(2 * n).saved());
  });
}

TEST_P(uniform_family, pairs_of_words_survive_an_odd_start) {
  if (!GetParam().about.has_uniform_bits)
    GTEST_SKIP() << "has no uniform bits";
  for_every_mode([&] {
    for (const std::size_t before : {1u, 2u, 3u}) {
      std::vector<std::uint64_t> values(5000, 1);
      ASSERT_EQ(viRngUniformBits64_64(0, owned_stream(id()).skip(before), 5000, values.data()),
                VQS_STATUS_OK);
      const auto words = owned_stream(id()).skip(before).bits(10'000);
      for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(values[i], words[2 * i] | std::uint64_t{words[2 * i + 1]} << 32);
    }
  });
}

HVL_STREAMS_FOR_EACH_ENGINE(uniform_family);

// Words just beside the middle between two floats, where a rounding on the way to float would show.
TEST(mcg59_to_float, rounds_once) {
  for_every_mode([&] {
    for (const std::uint64_t m : {0x800000u, 0x800001u, 0xFFFFFEu, 0xFFFFFFu}) {
      for (int shift = 1; shift <= 35; ++shift) {
        for (const std::int64_t beside : {-1, 0, 1}) {
          const std::uint64_t middle = m << shift | std::uint64_t{1} << (shift - 1);
          owned_stream stream(VQS_ENGINE_MCG59);
          auto* record = static_cast<vqs_mcg59_record*>(static_cast<vqs_stream>(stream));
          record->x = middle + static_cast<std::uint64_t>(beside);
          float value = -1;
          ASSERT_EQ(vsRngUniform_64(0, stream, 1, &value, 0.0f, 0x1p59f), VQS_STATUS_OK);
          const std::uint64_t low = m << shift;
          const std::uint64_t high = (m + 1) << shift;
          const bool up = beside > 0 || (beside == 0 && m % 2 == 1);
          ASSERT_EQ(value, static_cast<float>(up ? high : low))
              << "m " << m << ", shift " << shift << ", " << beside;
        }
      }
    }
  });
}

} // namespace
} // namespace hvl::streams::test
