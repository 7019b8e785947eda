// Vectors of normal numbers with a given covariance, in place: a vector to a lane.
#include "gaussian_mv.hpp"

#include "simd/vector_ops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <class T>
void one_by_one(const gaussian_mv_parameters<T>& p, T* z, std::size_t vectors) {
  for (std::size_t i = 0; i < vectors; ++i, z += p.dimension)
    math::gaussian_mv_in_place<math::scalar_ops<T>>(p.storage, p.dimension, p.mean, p.matrix, z);
}

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <class T>
void gaussian_mv(const void* parameters, void* values, std::size_t vectors) noexcept {
  one_by_one(*static_cast<const gaussian_mv_parameters<T>*>(parameters), static_cast<T*>(values), vectors);
}

#else

// Element `column` of as many vectors as there are lanes, `dimension` apart.
template <class T>
class column_lanes {
 public:
  HWY_INLINE column_lanes(T* first, std::size_t dimension)
      : first_(first), places_(hn::Mul(hn::Iota(index_tag(), 0),
                                       hn::Set(index_tag(), static_cast<hwy::MakeSigned<T>>(dimension)))) {}
  HWY_INLINE vector<T> load(std::size_t column) const {
    return hn::GatherIndex(vector_tag<T>(), first_ + column, places_);
  }
  HWY_INLINE void store(vector<T> v, std::size_t column) const {
    hn::ScatterIndex(v, vector_tag<T>(), first_ + column, places_);
  }

 private:
  using index_tag = hn::RebindToSigned<vector_tag<T>>;
  T* first_;
  hn::Vec<index_tag> places_;
};

// Rows from `first` on, whose sums grow together: a column is loaded once for all of them.
template <std::size_t Rows, class T>
HWY_INLINE void make_rows(const gaussian_mv_parameters<T>& p, const column_lanes<T>& z, std::size_t first) {
  using O = vector_ops<T>;
  const T* row[Rows];
  vector<T> sum[Rows];
  for (std::size_t i = 0; i < Rows; ++i) {
    row[i] = p.matrix + math::row_of(p.storage, p.dimension, first + i).start;
    sum[i] = O::set(p.mean[first + i]);
  }
  for (std::size_t j = 0; j < first; ++j) {
    const auto column = z.load(j);
    for (std::size_t i = 0; i < Rows; ++i)
      sum[i] = O::fma(O::set(row[i][j]), column, sum[i]);
  }
  for (std::size_t j = 0; j < Rows; ++j) {
    const auto column = z.load(first + j);
    for (std::size_t i = j; i < Rows; ++i)
      sum[i] = O::fma(O::set(row[i][first + j]), column, sum[i]);
  }
  for (std::size_t i = 0; i < Rows; ++i)
    z.store(sum[i], first + i);
}

template <class T>
void gaussian_mv(const void* parameters, void* values, std::size_t vectors) noexcept {
  constexpr std::size_t lanes = vector_values<T>, rows = 8;
  const auto& p = *static_cast<const gaussian_mv_parameters<T>*>(parameters);
  auto* z = static_cast<T*>(values);
  if (p.storage != math::matrix_storage::diagonal)
    for (; vectors >= lanes; vectors -= lanes, z += lanes * p.dimension) {
      const column_lanes<T> all(z, p.dimension);
      std::size_t end = p.dimension; // rows from here on are made
      for (; end >= rows; end -= rows)
        make_rows<rows>(p, all, end - rows);
      for (; end != 0; --end)
        make_rows<1>(p, all, end - 1);
    }
  one_by_one(p, z, vectors);
}

#endif

} // namespace

vector_function gaussian_mv_function(precision p) noexcept {
  return p == precision::single ? gaussian_mv<float> : gaussian_mv<double>;
}

} // namespace hvl::streams::HVL_STREAMS_ISA
