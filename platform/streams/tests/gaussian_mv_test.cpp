// gaussian_mv: vectors, threads and splits give what its formula makes of box_muller2's numbers, whose mean and covariance
// are those asked for.
#include <hvl/math/transforms/gaussian_mv.hpp>

#include <boost/math/distributions/normal.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "fit.hpp"
#include "support.hpp"

namespace hvl::streams::test {
namespace {

using math::matrix_storage;

template <class T>
int gaussian_mv(std::int64_t method, vqs_stream s, std::int64_t n, T* r, std::int32_t dimen,
                std::int32_t mstorage, const T* a, const T* t) {
  if constexpr (sizeof(T) == 4)
    return vsRngGaussianMV_64(method, s, n, r, dimen, mstorage, a, t);
  else
    return vdRngGaussianMV_64(method, s, n, r, dimen, mstorage, a, t);
}

template <class T>
void normal_numbers(vqs_stream s, std::vector<T>& z) {
  const auto n = static_cast<std::int64_t>(z.size());
  if constexpr (sizeof(T) == 4)
    ASSERT_EQ(vsRngGaussian_64(VQS_METHOD_GAUSSIAN_BOX_MULLER2, s, n, z.data(), 0, 1), VQS_STATUS_OK);
  else
    ASSERT_EQ(vdRngGaussian_64(VQS_METHOD_GAUSSIAN_BOX_MULLER2, s, n, z.data(), 0, 1), VQS_STATUS_OK);
}

// What is not to be read is NaN.
template <class T>
struct law {
  law(std::size_t dimension_of_a, matrix_storage storage_of_t)
      : dimension(dimension_of_a), storage(storage_of_t) {
    t.assign(math::matrix_elements(storage, dimension), std::numeric_limits<T>::quiet_NaN());
    for (std::size_t k = 0; k < dimension; ++k) {
      a.push_back(static_cast<T>(k) - T(1.25));
      const math::matrix_row row = math::row_of(storage, dimension, k);
      for (std::size_t j = row.first; j <= k; ++j)
        t[row.start + j] = T(1) / static_cast<T>(1 + k + 3 * j) - T(0.2);
    }
  }

  int generate(vqs_stream s, std::size_t n, T* r) const {
    return gaussian_mv(0, s, static_cast<std::int64_t>(n), r, static_cast<std::int32_t>(dimension),
                       static_cast<std::int32_t>(storage), a.data(), t.data());
  }

  // Element (k, j) of T, by the definition of the storages.
  T element(std::size_t k, std::size_t j) const {
    switch (storage) {
    case matrix_storage::full:
      return j <= k ? t[k * dimension + j] : T(0);
    case matrix_storage::packed:
      return j <= k ? t[k * (k + 1) / 2 + j] : T(0);
    case matrix_storage::diagonal:
      break;
    }
    return j == k ? t[k] : T(0);
  }

  std::size_t dimension;
  matrix_storage storage;
  std::vector<T> a, t;
};

constexpr matrix_storage storages[] = {matrix_storage::full, matrix_storage::packed,
                                       matrix_storage::diagonal};

// The sums of columns in ascending order, each product fused.
template <class T>
std::vector<T> one_by_one(vqs_stream s, const law<T>& l, std::size_t n) {
  std::vector<T> z(n * l.dimension), values(z.size());
  normal_numbers(s, z);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t k = 0; k < l.dimension; ++k) {
      T sum = l.a[k];
      for (std::size_t j = l.storage == matrix_storage::diagonal ? k : 0; j <= k; ++j)
        sum = std::fma(l.element(k, j), z[i * l.dimension + j], sum);
      values[i * l.dimension + k] = sum;
    }
  return values;
}

template <class T>
void check_bits(std::int32_t engine, std::size_t dimension) {
  for (const matrix_storage storage : storages) {
    SCOPED_TRACE(testing::Message() << "dimension " << dimension << ", storage "
                                    << static_cast<int>(storage));
    const law<T> l(dimension, storage);
    owned_stream origin(engine);
    origin.skip(3);
    constexpr std::size_t longest = 150;
    const std::vector<T> expected = one_by_one(owned_stream(origin), l, longest);
    for_every_mode([&] {
      for (const std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{16}, longest}) {
        owned_stream stream(origin);
        std::vector<T> values(n * dimension + 1, T(-7));
        ASSERT_EQ(l.generate(stream, n, values.data()), VQS_STATUS_OK);
        ASSERT_EQ(std::memcmp(values.data(), expected.data(), n * dimension * sizeof(T)), 0) << n;
        EXPECT_EQ(values.back(), T(-7)) << "behind the end";
        EXPECT_EQ(stream.saved(), owned_stream(origin).skip((n * dimension + 1) / 2 * 2).saved());
      }
    });
  }
}

class gaussian_mv_of : public each_engine {};

TEST_P(gaussian_mv_of, has_the_bits_of_its_formula) {
  for (const std::size_t dimension : {1, 2, 3, 8, 21}) {
    check_bits<float>(id(), dimension);
    check_bits<double>(id(), dimension);
  }
}

TEST_P(gaussian_mv_of, threads_and_splits_change_nothing) {
  const law<float> l(3, matrix_storage::packed);
  constexpr std::size_t n = 400'001, first = 100'002;
  std::vector<float> whole(3 * n), parts(3 * n);
  {
    const run_mode one_thread(-1, 1);
    const owned_stream stream(id());
    ASSERT_EQ(l.generate(stream, first, parts.data()), VQS_STATUS_OK);
    ASSERT_EQ(l.generate(stream, n - first, parts.data() + 3 * first), VQS_STATUS_OK);
  }
  const run_mode two_threads(-1, 2);
  ASSERT_EQ(l.generate(owned_stream(id()), n, whole.data()), VQS_STATUS_OK);
  EXPECT_EQ(std::memcmp(whole.data(), parts.data(), whole.size() * sizeof(float)), 0);
}

// Means and covariances of all pairs within their standard errors; then against T T' of a matrix that is a little different.
// Neighbouring vectors are independent, element by element.
template <class T>
void check_moments(const law<T>& l) {
  constexpr std::size_t n = std::size_t{1} << 20;
  const std::size_t d = l.dimension;
  std::vector<T> values(n * d);
  ASSERT_EQ(l.generate(owned_stream(VQS_ENGINE_PHILOX4X32X10), n, values.data()), VQS_STATUS_OK);
  const double deviations = boost::math::quantile(boost::math::complement(boost::math::normal(), alarm / 2));
  const auto exact = [&](std::size_t k, std::size_t j) {
    double sum = 0;
    for (std::size_t i = 0; i < d; ++i)
      sum += static_cast<double>(l.element(k, i)) * static_cast<double>(l.element(j, i));
    return sum;
  };
  for (std::size_t k = 0; k < d; ++k)
    for (std::size_t j = 0; j <= k; ++j) {
      double mean = 0, covariance = 0;
      for (std::size_t i = 0; i < n; ++i) {
        const double x = static_cast<double>(values[i * d + k]) - static_cast<double>(l.a[k]);
        mean += x / n;
        covariance += x * (static_cast<double>(values[i * d + j]) - static_cast<double>(l.a[j])) / n;
      }
      comparisons::count();
      EXPECT_NEAR(mean, 0, deviations * std::sqrt(exact(k, k) / n) + 1e-6) << k;
      comparisons::count();
      const double error =
          deviations * std::sqrt((exact(k, k) * exact(j, j) + exact(k, j) * exact(k, j)) / n) + 1e-6;
      EXPECT_NEAR(covariance, exact(k, j), error) << k << ' ' << j;
      if (k == j && exact(k, k) > 0) {
        EXPECT_GT(std::fabs(covariance - 1.05 * exact(k, k)), error) << "a wrong scale passes";
      }
    }
  for (std::size_t k = 0; k < d; ++k) {
    if (exact(k, k) == 0)
      continue;
    const double mean = static_cast<double>(l.a[k]), deviation = std::sqrt(exact(k, k));
    const law_cells of_law([=](double x) { return cdf(boost::math::normal(mean, deviation), x); }, 8,
                           mean - 9 * deviation, mean + 9 * deviation, false);
    std::vector<std::uint32_t> cells;
    for (std::size_t i = k; i < values.size(); i += d)
      cells.push_back(static_cast<std::uint32_t>(of_law(static_cast<double>(values[i]))));
    expect_independent_neighbours(cells, of_law.probability());
  }
}

TEST(gaussian_mv, has_the_mean_and_covariance) {
  for (const matrix_storage storage : storages) {
    check_moments(law<float>(5, storage));
    check_moments(law<double>(5, storage));
  }
}

// The third element is the sum of the others, the fourth a constant.
TEST(gaussian_mv, of_a_rank_below_the_dimension) {
  law<double> l(4, matrix_storage::packed);
  l.a = {1, 2, 3, -4};
  l.t = {2, 1, 0.5, 3, 0.5, 0, 0, 0, 0};
  l.t.push_back(0);
  check_moments(l);
  constexpr std::size_t n = 1000;
  std::vector<double> values(4 * n);
  ASSERT_EQ(l.generate(owned_stream(VQS_ENGINE_PHILOX4X32X10), n, values.data()), VQS_STATUS_OK);
  for (std::size_t i = 0; i < values.size(); i += 4) {
    EXPECT_NEAR(values[i + 2], values[i] + values[i + 1], 1e-13);
    EXPECT_EQ(values[i + 3], -4);
  }
}

template <class T>
void check_misuse() {
  const owned_stream stream(VQS_ENGINE_PHILOX4X32X10);
  const auto before = stream.saved();
  constexpr T nan = std::numeric_limits<T>::quiet_NaN();
  T r[4] = {-7, -7, -7, -7};
  const T a[] = {1, 2}, t[] = {1, nan, 1, 1}, packed[] = {1, 1, 1}, bad[] = {nan, nan, nan, nan};
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(gaussian_mv<T>(1, stream, 1, r, 2, 0, a, t), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 0, 0, a, t), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, -1, 0, a, t), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 2, 3, a, t), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 2, -1, a, t), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 2, 0, bad, t), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 2, 1, a, t), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 2, 2, a, bad), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 2, 0, nullptr, t), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 1, r, 2, 0, a, nullptr), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(gaussian_mv<T>(0, stream, -1, r, 2, 0, a, t), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(gaussian_mv<T>(0, stream, most / 2 + 1, r, 2, 0, a, t), VQS_STATUS_BAD_COUNT);
  EXPECT_TRUE(std::all_of(r, r + 4, [](T v) { return v == -7; }));
  EXPECT_EQ(stream.saved(), before);
  EXPECT_EQ(gaussian_mv<T>(0, stream, 2, r, 2, 1, a, packed), VQS_STATUS_OK);
}

TEST(gaussian_mv, misuse_changes_nothing) {
  check_misuse<float>();
  check_misuse<double>();
}

HVL_STREAMS_FOR_EACH_ENGINE(gaussian_mv_of);

} // namespace
} // namespace hvl::streams::test
