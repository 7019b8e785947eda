// Answers of device::get_info. Every device is this machine, so most answers are the processor's.
#include "limits.hpp"
#include "objects.hpp"
#include "usm_memory.hpp"

#include <sycl/group.hpp>

#include <hvl/core.h>

#include <algorithm>
#include <limits>
#include <thread>

#include <unistd.h>

namespace sycl {

namespace {

std::uint32_t vector_bytes() {
  switch (hvl_serv_isa()) {
  case HVL_ISA_AVX512:
    return 64;
  case HVL_ISA_AVX2:
    return 32;
  default:
    return 16;
  }
}

using detail::local_memory_bytes;
using detail::physical_memory;
using detail::sub_group_size;
constexpr std::size_t largest_group = detail::largest_work_group;

std::vector<info::fp_config> ieee_arithmetic() {
  return {info::fp_config::denorm,
          info::fp_config::inf_nan,
          info::fp_config::round_to_nearest,
          info::fp_config::round_to_zero,
          info::fp_config::round_to_inf,
          info::fp_config::fma,
          info::fp_config::correctly_rounded_divide_sqrt};
}
std::vector<memory_order> all_orders() {
  return {memory_order::relaxed, memory_order::acquire, memory_order::release, memory_order::acq_rel,
          memory_order::seq_cst};
}
std::vector<memory_scope> all_scopes() {
  return {memory_scope::work_item, memory_scope::sub_group, memory_scope::work_group, memory_scope::device,
          memory_scope::system};
}

} // namespace

#define ANSWER(descriptor, type, ...)                                                                        \
  template <>                                                                                                \
  type device::get_info<info::device::descriptor>() const {                                                  \
    return __VA_ARGS__;                                                                                      \
  }

ANSWER(device_type, info::device_type, state_->type)
ANSWER(vendor_id, std::uint32_t, state_->vendor_id)
ANSWER(max_compute_units, std::uint32_t, state_->compute_units)
ANSWER(max_work_item_dimensions, std::uint32_t, 3)
ANSWER(max_work_group_size, std::size_t, state_->work_group_size)
ANSWER(max_num_sub_groups, std::uint32_t, largest_group / sub_group_size)
ANSWER(sub_group_independent_forward_progress, bool, false)
ANSWER(sub_group_sizes, std::vector<std::size_t>, {sub_group_size})
ANSWER(preferred_vector_width_char, std::uint32_t, vector_bytes())
ANSWER(preferred_vector_width_short, std::uint32_t, vector_bytes() / 2)
ANSWER(preferred_vector_width_int, std::uint32_t, vector_bytes() / 4)
ANSWER(preferred_vector_width_long, std::uint32_t, vector_bytes() / 8)
ANSWER(preferred_vector_width_float, std::uint32_t, vector_bytes() / 4)
ANSWER(preferred_vector_width_double, std::uint32_t, vector_bytes() / 8)
ANSWER(preferred_vector_width_half, std::uint32_t, 0)
ANSWER(native_vector_width_char, std::uint32_t, vector_bytes())
ANSWER(native_vector_width_short, std::uint32_t, vector_bytes() / 2)
ANSWER(native_vector_width_int, std::uint32_t, vector_bytes() / 4)
ANSWER(native_vector_width_long, std::uint32_t, vector_bytes() / 8)
ANSWER(native_vector_width_float, std::uint32_t, vector_bytes() / 4)
ANSWER(native_vector_width_double, std::uint32_t, vector_bytes() / 8)
ANSWER(native_vector_width_half, std::uint32_t, 0)
ANSWER(max_clock_frequency, std::uint32_t, 0)
ANSWER(address_bits, std::uint32_t, 64)
ANSWER(max_mem_alloc_size, std::uint64_t, physical_memory())
ANSWER(max_parameter_size, std::size_t, std::size_t{1} << 16)
ANSWER(mem_base_addr_align, std::uint32_t, 512)
ANSWER(half_fp_config, std::vector<info::fp_config>, {})
ANSWER(single_fp_config, std::vector<info::fp_config>, ieee_arithmetic())
ANSWER(double_fp_config, std::vector<info::fp_config>, ieee_arithmetic())
ANSWER(global_mem_cache_type, info::global_mem_cache_type, info::global_mem_cache_type::read_write)
ANSWER(global_mem_cache_line_size, std::uint32_t, 64)
ANSWER(global_mem_cache_size, std::uint64_t,
       static_cast<std::uint64_t>(std::max(0L, sysconf(_SC_LEVEL3_CACHE_SIZE))))
ANSWER(global_mem_size, std::uint64_t, physical_memory())
ANSWER(local_mem_type, info::local_mem_type, info::local_mem_type::global)
ANSWER(local_mem_size, std::uint64_t, local_memory_bytes)
ANSWER(error_correction_support, bool, false)
ANSWER(atomic_memory_order_capabilities, std::vector<memory_order>, all_orders())
ANSWER(atomic_fence_order_capabilities, std::vector<memory_order>, all_orders())
ANSWER(atomic_memory_scope_capabilities, std::vector<memory_scope>, all_scopes())
ANSWER(atomic_fence_scope_capabilities, std::vector<memory_scope>, all_scopes())
ANSWER(profiling_timer_resolution, std::size_t, 1)
ANSWER(is_endian_little, bool, true)
ANSWER(is_available, bool, true)
ANSWER(is_compiler_available, bool, has(aspect::online_compiler))
ANSWER(is_linker_available, bool, has(aspect::online_linker))
ANSWER(execution_capabilities, std::vector<info::execution_capability>,
       {info::execution_capability::exec_kernel})
ANSWER(platform, sycl::platform, get_platform())
ANSWER(name, std::string, state_->name)
ANSWER(vendor, std::string, state_->vendor)
ANSWER(driver_version, std::string, state_->driver_version)
ANSWER(version, std::string, "2020")
ANSWER(backend_version, std::string, get_platform().get_info<info::platform::version>())
ANSWER(aspects, std::vector<aspect>, state_->aspects)
ANSWER(printf_buffer_size, std::size_t, 0)
ANSWER(partition_max_sub_devices, std::uint32_t, 0)
ANSWER(partition_properties, std::vector<info::partition_property>, {})
ANSWER(partition_affinity_domains, std::vector<info::partition_affinity_domain>, {})
ANSWER(partition_type_property, info::partition_property, info::partition_property::no_partition)
ANSWER(partition_type_affinity_domain, info::partition_affinity_domain,
       info::partition_affinity_domain::not_applicable)
ANSWER(max_work_item_sizes<1>, id<1>, {largest_group})
ANSWER(max_work_item_sizes<2>, id<2>, {largest_group, largest_group})
ANSWER(max_work_item_sizes<3>, id<3>, {largest_group, largest_group, largest_group})

} // namespace sycl
