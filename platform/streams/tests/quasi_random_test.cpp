// The quasi-random engines: their points against Boost's, their evenness, and their tables of any size.
#include <boost/random/niederreiter_base2.hpp>
#include <boost/random/sobol.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <random>

#include "support.hpp"

namespace hvl::streams::test {
namespace {

template <class Engine>
struct peer;
template <>
struct peer<engines::sobol> {
  using type = boost::random::sobol_engine<std::uint32_t, 32>;
  static constexpr std::uint32_t dimensions = 3667;
  static constexpr std::uint32_t degrees[] = {1, 1, 2, 3, 3, 4, 4, 5}; // of the polynomials, where one counts
};
template <>
struct peer<engines::niederreiter> {
  using type = boost::random::niederreiter_base2_engine<std::uint32_t, 32>;
  static constexpr std::uint32_t dimensions = 4720;
  static constexpr std::uint32_t degrees[] = {1, 1, 2, 3, 3, 4, 4, 4};
};

template <class Engine>
class quasi_random : public ::testing::Test {
 protected:
  static constexpr std::int32_t id = Engine::about.identifier;
  static owned_stream stream(std::uint64_t dimensions) { return owned_stream(id, dimensions); }

  static std::vector<std::uint32_t> numbers(const owned_stream& from) {
    const auto& record = *static_cast<typename Engine::record*>(static_cast<vqs_stream>(from));
    std::vector<std::uint32_t> result{record.dimensions};
    for (std::uint32_t d = 0; d < record.dimensions; ++d) {
      const std::uint32_t* const v = Engine::direction_numbers(record) + Engine::record_stride * d;
      result.insert(result.end(), v, v + Engine::number_bits);
    }
    return result;
  }
};
using quasi_random_types = ::testing::Types<engines::sobol, engines::niederreiter>;
TYPED_TEST_SUITE(quasi_random, quasi_random_types);

// Where 32 is no multiple of a polynomial's degree, Boost cuts off the last of its powers, which makes the last bits.
std::uint32_t bits_of_whole_powers(std::uint32_t dimension) {
  constexpr std::uint32_t polynomials[] = {2, 1, 2, 3, 6, 9, 18, 30, 56, 99, 186, 335, 630, 1161, 2182};
  std::uint32_t degree = 1;
  for (; dimension >= polynomials[degree - 1]; ++degree)
    dimension -= polynomials[degree - 1];
  return ~0u << 32 % degree;
}

TYPED_TEST(quasi_random, points_of_all_dimensions_are_those_of_boost) {
  constexpr std::uint32_t dimensions = peer<TypeParam>::dimensions, points = 2 << 7;
  typename peer<TypeParam>::type other(dimensions); // begins with the second point
  std::vector<std::uint32_t> expected(dimensions * points);
  std::generate(expected.begin() + dimensions, expected.end(), other);
  expect_equal(this->stream(dimensions).bits(expected.size()), expected);

  constexpr std::uint64_t far = 0xABCDEF01;
  other.seed();
  other.discard((far - 1) * dimensions);
  expected.resize(3 * dimensions);
  std::generate(expected.begin(), expected.end(), other);
  auto actual = this->stream(dimensions).skip(far * dimensions).bits(expected.size());
  if constexpr (std::is_same_v<TypeParam, engines::niederreiter>)
    for (std::size_t i = 0; i < actual.size(); ++i) {
      const std::uint32_t mask = bits_of_whole_powers(static_cast<std::uint32_t>(i % dimensions));
      actual[i] &= mask;
      expected[i] &= mask;
    }
  expect_equal(actual, expected);
}

// Whether each elementary interval of area 2^(t - m) in the plane of two dimensions has 2^t of the points.
bool is_net(const std::vector<std::uint32_t>& words, std::uint32_t dimensions, std::uint32_t first,
            std::uint32_t second, std::uint32_t t, std::uint32_t m) {
  for (std::uint32_t rows = 0; rows <= m - t; ++rows) {
    std::vector<std::uint32_t> counts(std::size_t{1} << (m - t));
    const std::uint32_t columns = m - t - rows;
    for (std::size_t point = 0; point < words.size(); point += dimensions) {
      const std::uint64_t x = words[point + first], y = words[point + second];
      ++counts[(x << columns >> 32) << rows | y << rows >> 32];
    }
    if (std::count(counts.begin(), counts.end(), 1u << t) != std::int64_t{1} << (m - t))
      return false;
  }
  return true;
}

TYPED_TEST(quasi_random, projections_on_planes_are_nets) {
  constexpr std::uint32_t dimensions = std::size(peer<TypeParam>::degrees);
  for (const std::uint32_t m : {8u, 11u}) {
    for (const std::uint64_t block : {0u, 1u, 77'777u}) {
      const std::uint64_t words = std::uint64_t{dimensions} << m;
      const auto points = this->stream(dimensions).skip(block * words).bits(words);
      for (std::uint32_t i = 0; i < dimensions; ++i)
        for (std::uint32_t j = 0; j < i; ++j) {
          const std::uint32_t t = peer<TypeParam>::degrees[i] + peer<TypeParam>::degrees[j] - 2;
          EXPECT_TRUE(is_net(points, dimensions, i, j, t, m)) << i << ", " << j << ", from block " << block;
        }
      auto damaged = points;
      damaged[5 * dimensions] ^= 0x80000000;
      EXPECT_FALSE(is_net(damaged, dimensions, 0, 1, 0, m));
    }
  }
}

// The same of all 2^32 points, by the rank of the rows of the generator matrices.
TYPED_TEST(quasi_random, projections_of_all_points_are_nets) {
  constexpr std::uint32_t dimensions = std::size(peer<TypeParam>::degrees);
  const auto numbers = this->numbers(this->stream(dimensions));
  const auto row = [&](std::uint32_t dimension, std::uint32_t index) {
    std::uint32_t bits = 0;
    for (std::uint32_t k = 0; k < 32; ++k)
      bits |= (numbers[1 + 32 * dimension + k] >> (31 - index) & 1) << k;
    return bits;
  };
  for (std::uint32_t i = 0; i < dimensions; ++i)
    for (std::uint32_t j = 0; j < i; ++j) {
      const std::uint32_t rows = 32 - (peer<TypeParam>::degrees[i] + peer<TypeParam>::degrees[j] - 2);
      for (std::uint32_t of_first = 0; of_first <= rows; ++of_first) {
        std::uint32_t by_lowest_bit[32] = {};
        for (std::uint32_t r = 0; r < rows; ++r) {
          std::uint32_t rest = r < of_first ? row(i, r) : row(j, r - of_first);
          while (rest != 0 && by_lowest_bit[std::countr_zero(rest)] != 0)
            rest ^= by_lowest_bit[std::countr_zero(rest)];
          ASSERT_NE(rest, 0u) << i << ", " << j << ": " << of_first << " rows of the first";
          by_lowest_bit[std::countr_zero(rest)] = rest;
        }
      }
    }
}

// The sum over the points of a Walsh function: bit b of `index` of a dimension turns the sign with bit 31 - b of its
// coordinate.
int walsh_sum(const std::vector<std::uint32_t>& words, const std::vector<std::uint32_t>& index) {
  int sum = 0;
  for (std::size_t point = 0; point < words.size(); point += index.size()) {
    std::uint32_t signs = 0;
    for (std::size_t d = 0; d < index.size(); ++d)
      for (std::uint32_t rest = index[d]; rest != 0; rest &= rest - 1)
        signs ^= words[point + d] >> (31 - std::countr_zero(rest));
    sum += (signs & 1) != 0 ? -1 : 1;
  }
  return sum;
}

// Of the first 2^m points in three dimensions, which are a (1, m, 3)-net: all Walsh functions of together less than m
// digits have the integral 0. And in the plane of the first two, which is a group that meets every interval: of all 4^m
// functions of m digits 2^m have the integral 1, the others 0.
TYPED_TEST(quasi_random, walsh_functions_are_integrated_exactly) {
  constexpr std::uint32_t m = 6;
  const auto space = this->stream(3).bits(3u << m), plane = this->stream(2).bits(2u << m);
  for (std::uint32_t i = 0; i < 1u << m; ++i)
    for (std::uint32_t j = 0; j < 1u << m; ++j)
      for (std::uint32_t k = 0; k < 1u << m; ++k) {
        const auto digits = std::bit_width(i) + std::bit_width(j) + std::bit_width(k);
        if (digits == 0 || digits >= m)
          continue;
        ASSERT_EQ(walsh_sum(space, {i, j, k}), 0) << i << ", " << j << ", " << k;
      }

  std::uint32_t ones = 0;
  for (std::uint32_t i = 0; i < 1u << m; ++i)
    for (std::uint32_t j = 0; j < 1u << m; ++j) {
      const int sum = walsh_sum(plane, {i, j});
      ones += sum == 1 << m ? 1 : 0;
      ASSERT_TRUE(sum == 0 || sum == 1 << m) << i << ", " << j;
    }
  EXPECT_EQ(ones, 1u << m);
}

// The product of (pi / 2) sin(pi x) over the unit cube of five dimensions, whose integral is 1 and whose standard deviation
// with random points would be 1.36 / sqrt(n). There 256 times the points leave a sixteenth of the error, here a hundredth.
TYPED_TEST(quasi_random, a_smooth_integral_converges_faster_than_by_random_points) {
  constexpr std::uint32_t dimensions = 5;
  const auto error = [&](std::size_t points) {
    std::vector<double> x(points * dimensions);
    owned_stream stream = this->stream(dimensions);
    EXPECT_EQ(vdRngUniform_64(0, stream, static_cast<std::int64_t>(x.size()), x.data(), 0.0, 1.0),
              VQS_STATUS_OK);
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); i += dimensions) {
      double product = 1;
      for (std::size_t d = 0; d < dimensions; ++d)
        product *= std::numbers::pi / 2 * std::sin(std::numbers::pi * x[i + d]);
      sum += product;
    }
    return std::abs(sum / static_cast<double>(points) - 1);
  };
  EXPECT_LT(error(1 << 16), error(1 << 8) / 100);
  EXPECT_LT(error(1 << 16), 1.36 / (1 << 8) / 20);
}

// Draws and skips of any size, against the words one by one.
TYPED_TEST(quasi_random, rows_of_any_width_give_the_same_words) {
  for (const std::uint32_t dimensions : {1u, 2u, 3u, 63u, 255u, 256u, 257u, 511u, 512u, 513u, 1000u, 4720u}) {
    SCOPED_TRACE(dimensions);
    for_every_mode([&] {
      owned_stream stream = this->stream(dimensions);
      const auto& record = *static_cast<typename TypeParam::record*>(static_cast<vqs_stream>(stream));
      auto state = TypeParam::state_of(record);
      std::mt19937 random(dimensions);
      const std::size_t sizes[] = {2, 200, 1500, 3 * dimensions};
      for (int round = 0; round < 12; ++round) {
        const std::size_t n = random() % sizes[round % 4];
        std::vector<std::uint32_t> expected(n);
        for (std::uint32_t& word : expected) {
          word = state.value();
          state.step();
        }
        ASSERT_NO_FATAL_FAILURE(expect_equal(stream.bits(n), expected));
        if (random() % 3 == 0) {
          const std::uint64_t distance = random() % (4 * dimensions);
          stream.skip(distance);
          state.advance(distance);
        }
      }
    });
  }
}

TYPED_TEST(quasi_random, after_the_last_point_comes_the_first) {
  for (const std::uint32_t dimensions : {1u, 3u, 700u}) {
    const std::uint64_t period = std::uint64_t{dimensions} << 32;
    owned_stream stream = this->stream(dimensions);
    const auto first = owned_stream(stream).bits(5000);
    stream.skip(period - 1000);
    auto across = stream.bits(6000);
    across.erase(across.begin(), across.begin() + 1000);
    expect_equal(across, first);
    EXPECT_EQ(this->stream(dimensions).skip(period).saved(), this->stream(dimensions).saved());
  }
}

TYPED_TEST(quasi_random, numbers_of_dimensions_and_words_that_make_no_sense_are_refused) {
  constexpr std::uint32_t most = TypeParam::most_dimensions;
  const auto refused = [](const std::vector<std::uint32_t>& words) {
    vqs_stream stream = nullptr;
    const int status = vqsNewStreamEx_64(&stream, TypeParam::about.identifier,
                                         static_cast<std::int64_t>(words.size()), words.data());
    const owned_stream accepted = owned_stream::adopt(stream);
    return status == VQS_STATUS_BAD_PARAMETER && stream == nullptr;
  };
  vqs_stream none = nullptr;
  for (const std::uint64_t dimensions :
       {std::uint64_t{0}, std::uint64_t{most} + 1, std::uint64_t{1} << 32 | 1})
    EXPECT_EQ(vqsNewStream_64(&none, TypeParam::about.identifier, dimensions), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(this->stream(most).skip(std::uint64_t{most} * 5 - 1).bits(2)[1], 0xE0000000);
  EXPECT_TRUE(refused({0}));
  EXPECT_TRUE(refused({most + 1}));
  EXPECT_TRUE(refused({0, 1}));
  EXPECT_TRUE(refused({2, 3, 7, 11}));
  if constexpr (std::is_same_v<TypeParam, engines::sobol>) {
    EXPECT_TRUE(refused(std::vector<std::uint32_t>(1 + 63, 2)));
  } else {
    for (const std::uint32_t reducible :
         {0u, 1u, 4u, 5u, 21u, 0x80000001u}) // 21 is the square of x^2 + x + 1
      EXPECT_TRUE(refused({2, 3, reducible})) << reducible;
    EXPECT_TRUE(refused({3, 3, 7, 3})); // the same twice
    EXPECT_FALSE(refused({2, 3, 0x80000009u}) && refused({2, 3, 0xC0000401u}));
  }
}

TYPED_TEST(quasi_random, words_may_give_the_dimensions_alone) {
  const std::uint32_t words[] = {7};
  EXPECT_EQ(owned_stream(this->id, words).saved(), this->stream(7).saved());
  EXPECT_EQ(owned_stream(this->id, std::span<const std::uint32_t>()).saved(), this->stream(1).saved());
}

TEST(niederreiter_polynomials, of_the_caller_count_like_the_engines_own) {
  const std::int32_t id = VQS_ENGINE_NIEDERREITER;
  const std::uint32_t in_order[] = {5, 2, 3, 7, 11, 13};
  expect_equal(owned_stream(id, in_order).bits(4000), owned_stream(id, 5).bits(4000));
  const std::uint32_t swapped[] = {2, 13, 7};
  const auto all = owned_stream(id, 5).bits(5 * 300), two = owned_stream(id, swapped).bits(2 * 300);
  for (std::size_t point = 0; point < 300; ++point) {
    ASSERT_EQ(two[2 * point], all[5 * point + 4]);
    ASSERT_EQ(two[2 * point + 1], all[5 * point + 2]);
  }
}

TEST(sobol_numbers, of_the_caller_are_kept_in_copies_and_saved_states) {
  for (const std::uint32_t dimensions : {1u, 3u, 700u}) {
    std::mt19937 random(dimensions);
    std::vector<std::uint32_t> words(1 + 32 * dimensions);
    std::generate(words.begin() + 1, words.end(), random);
    words[0] = dimensions;
    owned_stream stream(VQS_ENGINE_SOBOL, words);
    EXPECT_EQ(stream.bits(2 * dimensions)[dimensions], words[1]);
    stream.bits(1001);
    const auto state = stream.saved();
    EXPECT_EQ(state.size(), 16 + 16 + 128 * dimensions + 4);
    EXPECT_EQ(owned_stream(VQS_ENGINE_SOBOL, dimensions).saved().size(), 16u + 16 + 4);
    vqs_stream handle = nullptr;
    ASSERT_EQ(vqsLoadStreamM_64(&handle, state.data()), VQS_STATUS_OK);
    owned_stream loaded = owned_stream::adopt(handle), copied(stream);
    EXPECT_EQ(loaded.saved(), state);
    const std::string file = (std::filesystem::temp_directory_path() / "sobol-numbers").string();
    ASSERT_EQ(vqsSaveStreamF_64(stream, file.c_str()), VQS_STATUS_OK);
    ASSERT_EQ(vqsLoadStreamF_64(&handle, file.c_str()), VQS_STATUS_OK);
    owned_stream from_file = owned_stream::adopt(handle);
    const auto expected = stream.bits(5000);
    expect_equal(loaded.bits(5000), expected);
    expect_equal(copied.bits(5000), expected);
    expect_equal(from_file.bits(5000), expected);
    for (std::size_t bit = 0; bit < 8 * 36; ++bit) { // whatever is wrong, no more is read than there is
      auto damaged = state;
      damaged[bit / 8] = static_cast<unsigned char>(damaged[bit / 8] ^ (1u << bit % 8));
      ASSERT_NE(vqsLoadStreamM_64(&handle, damaged.data()), VQS_STATUS_OK) << "bit " << bit;
    }
    std::filesystem::remove(file);
  }
}

} // namespace
} // namespace hvl::streams::test
