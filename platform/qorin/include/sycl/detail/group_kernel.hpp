// The loop over the work-items of an nd_range kernel, compiled once per instruction set like that of range kernels.
#pragma once

#include <sycl/detail/range_kernel.hpp>
#include <sycl/nd_item.hpp>

namespace sycl::detail {

/// Runs the items [first, last) of one group.
using group_function = void (*)(const void* launch, work_group& members, std::ptrdiff_t group,
                                std::ptrdiff_t first, std::ptrdiff_t last);

struct group_functions {
  group_function baseline;
  group_function avx2;
  group_function avx512;
};

struct group_shape {
  std::size_t groups;
  std::size_t items; // of one group
  std::size_t local_bytes;
};

/// Runs all groups; returns when all are done. Throws errc::kernel when items of a group wait for others that ended.
QORIN_EXPORT void run_groups(const group_functions& functions, const void* launch, const group_shape& shape);

/// Throws errc::nd_range unless the groups have a size the devices offer and fill the global range, and
/// errc::feature_not_supported for a range with an offset.
QORIN_EXPORT void check_groups(const range<3>& global, const range<3>& local, bool at_origin);

template <int Dimensions, class Kernel>
struct group_launch {
  nd_range<Dimensions> extent;
  Kernel kernel;
};

template <int Dimensions, class Kernel>
inline __attribute__((always_inline)) void run_group_items(const void* launch, work_group& members,
                                                           std::ptrdiff_t group, std::ptrdiff_t first,
                                                           std::ptrdiff_t last) {
  const auto& source = *static_cast<const group_launch<Dimensions, Kernel>*>(launch);
  const Kernel kernel = source.kernel;
  const range<Dimensions> groups = source.extent.get_group_range();
  const range<Dimensions> local = source.extent.get_local_range();
  id<Dimensions> group_id;
  auto rest = static_cast<std::size_t>(group);
  for (int d = Dimensions - 1; d >= 0; --d) {
    group_id[d] = rest % groups[d];
    rest /= groups[d];
  }
  // Forced: a copy of the body outside of this function would not be compiled for its instruction set.
  const auto run_row = [&](id<Dimensions> at, std::ptrdiff_t from, std::ptrdiff_t to)
      __attribute__((always_inline)) {
    for (std::ptrdiff_t i = from; i < to; ++i) {
      at[Dimensions - 1] = static_cast<std::size_t>(i);
      kernel(group_access::item_of(group_access::make(members, group_id, groups, at, local)));
    }
  };
  for_each_row(local, first, last, run_row);
}

#define QORIN_GROUP_FUNCTION(name, attributes)                                                               \
  template <int Dimensions, class Kernel>                                                                    \
  attributes void name(const void* launch, work_group& members, std::ptrdiff_t group, std::ptrdiff_t first,  \
                       std::ptrdiff_t last) {                                                                \
    run_group_items<Dimensions, Kernel>(launch, members, group, first, last);                                \
  }
QORIN_GROUP_FUNCTION(group_items_baseline, QORIN_FOR_BASELINE)
#if defined(QORIN_BASELINE_KERNELS)
template <int Dimensions, class Kernel>
inline constexpr group_functions group_items = {group_items_baseline<Dimensions, Kernel>,
                                                group_items_baseline<Dimensions, Kernel>,
                                                group_items_baseline<Dimensions, Kernel>};
#else
QORIN_GROUP_FUNCTION(group_items_avx2, QORIN_FOR_AVX2)
QORIN_GROUP_FUNCTION(group_items_avx512, QORIN_FOR_AVX512)
template <int Dimensions, class Kernel>
inline constexpr group_functions group_items = {group_items_baseline<Dimensions, Kernel>,
                                                group_items_avx2<Dimensions, Kernel>,
                                                group_items_avx512<Dimensions, Kernel>};
#endif
#undef QORIN_GROUP_FUNCTION

template <int Dimensions, class Kernel>
void run_nd_range(const nd_range<Dimensions>& extent, std::size_t local_bytes, const Kernel& kernel) {
  const group_launch<Dimensions, Kernel> launch{extent, kernel};
  run_groups(group_items<Dimensions, Kernel>, &launch,
             {extent.get_group_range().size(), extent.get_local_range().size(), local_bytes});
}

} // namespace sycl::detail
