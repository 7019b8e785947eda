// Aspects, and the descriptors that `get_info` is asked with. Each list is written once; the queries are
// declared here and answered in the library for exactly the descriptors of the list.
#pragma once

#include <sycl/id.hpp>
#include <sycl/memory_order.hpp>

#include <string>
#include <vector>

namespace sycl {

class platform;
class device;
class context;

/// What makes a queue's commands run.
enum class backend : char {
  host,   ///< threads of this process, called the CPU device
  zerlin, ///< the emulated GPU's driver, which is this runtime itself
  opencl  ///< objects made from native OpenCL handles
};

enum class aspect {
  cpu,
  gpu,
  accelerator,
  custom,
  emulated,
  host_debuggable,
  fp16,
  fp64,
  atomic64,
  image,
  online_compiler,
  online_linker,
  queue_profiling,
  usm_device_allocations,
  usm_host_allocations,
  usm_atomic_host_allocations,
  usm_shared_allocations,
  usm_atomic_shared_allocations,
  usm_system_allocations
};

namespace info {

enum class device_type : unsigned { cpu, gpu, accelerator, custom, automatic, host, all };
enum class event_command_status : int { submitted, running, complete };
enum class partition_property : int {
  no_partition,
  partition_equally,
  partition_by_counts,
  partition_by_affinity_domain
};
enum class partition_affinity_domain : int {
  not_applicable,
  numa,
  L4_cache,
  L3_cache,
  L2_cache,
  L1_cache,
  next_partitionable
};
enum class local_mem_type : int { none, local, global };
enum class fp_config : int {
  denorm,
  inf_nan,
  round_to_nearest,
  round_to_zero,
  round_to_inf,
  fma,
  correctly_rounded_divide_sqrt,
  soft_float
};
enum class global_mem_cache_type : int { none, read_only, read_write };
enum class execution_capability : int { exec_kernel, exec_native_kernel };

namespace device {
#define QORIN_INFO_DEVICE(X)                                                                                 \
  X(device_type, info::device_type)                                                                          \
  X(vendor_id, std::uint32_t)                                                                                \
  X(max_compute_units, std::uint32_t)                                                                        \
  X(max_work_item_dimensions, std::uint32_t)                                                                 \
  X(max_work_group_size, std::size_t)                                                                        \
  X(max_num_sub_groups, std::uint32_t)                                                                       \
  X(sub_group_independent_forward_progress, bool)                                                            \
  X(sub_group_sizes, std::vector<std::size_t>)                                                               \
  X(preferred_vector_width_char, std::uint32_t)                                                              \
  X(preferred_vector_width_short, std::uint32_t)                                                             \
  X(preferred_vector_width_int, std::uint32_t)                                                               \
  X(preferred_vector_width_long, std::uint32_t)                                                              \
  X(preferred_vector_width_float, std::uint32_t)                                                             \
  X(preferred_vector_width_double, std::uint32_t)                                                            \
  X(preferred_vector_width_half, std::uint32_t)                                                              \
  X(native_vector_width_char, std::uint32_t)                                                                 \
  X(native_vector_width_short, std::uint32_t)                                                                \
  X(native_vector_width_int, std::uint32_t)                                                                  \
  X(native_vector_width_long, std::uint32_t)                                                                 \
  X(native_vector_width_float, std::uint32_t)                                                                \
  X(native_vector_width_double, std::uint32_t)                                                               \
  X(native_vector_width_half, std::uint32_t)                                                                 \
  X(max_clock_frequency, std::uint32_t)                                                                      \
  X(address_bits, std::uint32_t)                                                                             \
  X(max_mem_alloc_size, std::uint64_t)                                                                       \
  X(max_parameter_size, std::size_t)                                                                         \
  X(mem_base_addr_align, std::uint32_t)                                                                      \
  X(half_fp_config, std::vector<info::fp_config>)                                                            \
  X(single_fp_config, std::vector<info::fp_config>)                                                          \
  X(double_fp_config, std::vector<info::fp_config>)                                                          \
  X(global_mem_cache_type, info::global_mem_cache_type)                                                      \
  X(global_mem_cache_line_size, std::uint32_t)                                                               \
  X(global_mem_cache_size, std::uint64_t)                                                                    \
  X(global_mem_size, std::uint64_t)                                                                          \
  X(local_mem_type, info::local_mem_type)                                                                    \
  X(local_mem_size, std::uint64_t)                                                                           \
  X(error_correction_support, bool)                                                                          \
  X(atomic_memory_order_capabilities, std::vector<memory_order>)                                             \
  X(atomic_fence_order_capabilities, std::vector<memory_order>)                                              \
  X(atomic_memory_scope_capabilities, std::vector<memory_scope>)                                             \
  X(atomic_fence_scope_capabilities, std::vector<memory_scope>)                                              \
  X(profiling_timer_resolution, std::size_t)                                                                 \
  X(is_endian_little, bool)                                                                                  \
  X(is_available, bool)                                                                                      \
  X(is_compiler_available, bool)                                                                             \
  X(is_linker_available, bool)                                                                               \
  X(execution_capabilities, std::vector<info::execution_capability>)                                         \
  X(platform, sycl::platform)                                                                                \
  X(name, std::string)                                                                                       \
  X(vendor, std::string)                                                                                     \
  X(driver_version, std::string)                                                                             \
  X(version, std::string)                                                                                    \
  X(backend_version, std::string)                                                                            \
  X(aspects, std::vector<aspect>)                                                                            \
  X(printf_buffer_size, std::size_t)                                                                         \
  X(partition_max_sub_devices, std::uint32_t)                                                                \
  X(partition_properties, std::vector<info::partition_property>)                                             \
  X(partition_affinity_domains, std::vector<info::partition_affinity_domain>)                                \
  X(partition_type_property, info::partition_property)                                                       \
  X(partition_type_affinity_domain, info::partition_affinity_domain)
#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  struct descriptor {                                                                                        \
    using return_type = type;                                                                                \
  };
QORIN_INFO_DEVICE(QORIN_INFO_DECLARE)
template <int Dimensions = 3>
struct max_work_item_sizes {
  using return_type = id<Dimensions>;
};
} // namespace device

namespace platform {
#define QORIN_INFO_PLATFORM(X)                                                                               \
  X(version, std::string)                                                                                    \
  X(name, std::string)                                                                                       \
  X(vendor, std::string)
QORIN_INFO_PLATFORM(QORIN_INFO_DECLARE)
} // namespace platform

namespace context {
#define QORIN_INFO_CONTEXT(X)                                                                                \
  X(platform, sycl::platform)                                                                                \
  X(devices, std::vector<sycl::device>)                                                                      \
  X(atomic_memory_order_capabilities, std::vector<memory_order>)                                             \
  X(atomic_fence_order_capabilities, std::vector<memory_order>)                                              \
  X(atomic_memory_scope_capabilities, std::vector<memory_scope>)                                             \
  X(atomic_fence_scope_capabilities, std::vector<memory_scope>)
QORIN_INFO_CONTEXT(QORIN_INFO_DECLARE)
} // namespace context

namespace queue {
#define QORIN_INFO_QUEUE(X)                                                                                  \
  X(context, sycl::context)                                                                                  \
  X(device, sycl::device)
QORIN_INFO_QUEUE(QORIN_INFO_DECLARE)
} // namespace queue

namespace event {
#define QORIN_INFO_EVENT(X) X(command_execution_status, info::event_command_status)
QORIN_INFO_EVENT(QORIN_INFO_DECLARE)
} // namespace event

namespace event_profiling {
#define QORIN_INFO_EVENT_PROFILING(X)                                                                        \
  X(command_submit, std::uint64_t)                                                                           \
  X(command_start, std::uint64_t)                                                                            \
  X(command_end, std::uint64_t)
QORIN_INFO_EVENT_PROFILING(QORIN_INFO_DECLARE)
} // namespace event_profiling
#undef QORIN_INFO_DECLARE

} // namespace info
} // namespace sycl
