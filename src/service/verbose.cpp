#include "service/verbose.hpp"

#include <algorithm>
#include <atomic>
#include <limits>
#include <string>

#include <hvl/core.h>

#include "service/gpu_list.hpp"
#include "service/trace_output.hpp"

namespace kestro::hvl::gpu {
namespace {

thread_local std::int32_t verbose_depth = 0;
thread_local std::vector<sycl::event> hvl_gpu_verbose_event_list;

std::atomic<int> interface_tag{0};

bool is_timing() noexcept {
  return verbose_mode() == 2;
}

// From the first start to the last end. A queue that does not profile is no reason to fail.
double device_seconds(const std::vector<sycl::event>& events) {
  std::uint64_t start = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t end = 0;
  try {
    for (const sycl::event& e : events) {
      start =
          std::min<std::uint64_t>(start, e.get_profiling_info<sycl::info::event_profiling::command_start>());
      end = std::max<std::uint64_t>(end, e.get_profiling_info<sycl::info::event_profiling::command_end>());
    }
  } catch (...) {
    return 0.0;
  }
  return end >= start ? static_cast<double>(end - start) * 1e-9 : 0.0;
}

} // namespace

int verbose_mode() noexcept {
  return std::atomic_ref(*hvl_serv_verbose_mode()).load(std::memory_order_relaxed);
}

void set_verbose_gpu_iface(int iface) noexcept {
  interface_tag.store(iface, std::memory_order_relaxed);
}

void verbose_depth_inc() noexcept {
  ++verbose_depth;
}

void verbose_depth_dec() noexcept {
  --verbose_depth;
}

void verbose_register_event(const sycl::event& e) {
  if (is_timing())
    hvl_gpu_verbose_event_list.push_back(e);
}

void verbose_usm_start(double* time, const std::vector<sycl::event>& dependencies) {
  verbose_depth_inc();
  if (!is_timing())
    return;
  for (sycl::event dependency : dependencies)
    dependency.wait();
  *time = -hvl_serv_dsecnd();
}

void verbose_usm_end(double* time, sycl::event e) {
  verbose_depth_dec();
  if (!is_timing())
    return;
  e.wait();
  *time += hvl_serv_dsecnd();
}

void print_verbose_gpu_info(sycl::queue* q, const char* description, double host_time) {
  if (verbose_depth != 0 || verbose_mode() == 0)
    return;
  hvl_serv_print_verbose_header(interface_tag.load(std::memory_order_relaxed));
  list_gpus_once(*q);

  const double device_time = device_seconds(hvl_gpu_verbose_event_list);
  hvl_gpu_verbose_event_list.clear();

  bounded_text times;
  hvl_serv_sprintf_char_s(&times.cursor, &times.room, "host:");
  print_time(times.cursor, times.room, host_time);
  hvl_serv_sprintf_char_s(&times.cursor, &times.room, " device:");
  print_time(times.cursor, times.room, device_time);
  if (const int index = listed_gpu_index(q->get_device()); index >= 0)
    hvl_serv_sprintf_char_s(&times.cursor, &times.room, " GPU%d", index);
  write_trace(std::string("HVL_VERBOSE ") + description + ' ' + times.characters + '\n');
}

void print_time(char*& cursor, std::size_t& room, double seconds) {
  if (!(seconds > 0))
    hvl_serv_sprintf_char_s(&cursor, &room, "nan");
  else if (seconds > 1)
    hvl_serv_sprintf_char_s(&cursor, &room, "%.2fs", seconds);
  else if (1000 * seconds > 1)
    hvl_serv_sprintf_char_s(&cursor, &room, "%.2fms", 1000 * seconds);
  else if (1000000 * seconds > 1)
    hvl_serv_sprintf_char_s(&cursor, &room, "%.2fus", 1000000 * seconds);
  else
    hvl_serv_sprintf_char_s(&cursor, &room, "%.0fns", 1000000000 * seconds);
}

} // namespace kestro::hvl::gpu
