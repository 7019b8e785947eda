#include "service/gpu_list.hpp"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include <hvl/core.h>

#include "service/device_facts.hpp"
#include "service/trace_output.hpp"

namespace kestro::hvl::gpu {
namespace {

struct service_lock {
  hvl_serv_lock_t handle = HVL_SERV_LOCK_INIT;

  void lock() { hvl_serv_lock(&handle); }
  void unlock() { hvl_serv_unlock(&handle); }
};

service_lock listing_lock;
std::atomic<bool> listing_is_printed{false};

// Written before the flag is set, then only read.
std::vector<sycl::device> hvl_gpu_global_devices_list;

void append(bounded_text& listing, int index, const sycl::device& device, const char* backend) {
  hvl_serv_sprintf_char_s(&listing.cursor, &listing.room,
                          "HVL_VERBOSE Detected GPU%d %s Backend:%s VE:%d Stack:%d maxWGsize:%d\n", index,
                          architecture_name(architecture_code(device)), backend, execution_unit_count(device),
                          tile_count(device), max_work_group_size(device));
}

} // namespace

void list_gpus_once(const sycl::queue& q) {
  if (listing_is_printed.load(std::memory_order_acquire))
    return;
  const std::lock_guard lock(listing_lock);
  if (listing_is_printed.load(std::memory_order_relaxed))
    return;

  std::vector<sycl::device> gpus = sycl::device::get_devices(sycl::info::device_type::gpu);
  const sycl::backend backend = q.get_device().get_backend();
  std::erase_if(gpus, [&](const sycl::device& gpu) { return gpu.get_backend() != backend; });
  bounded_text listing;
  for (int index = 0; const sycl::device& gpu : gpus)
    append(listing, index++, gpu, backend_name(backend_code(backend)));

  hvl_gpu_global_devices_list = std::move(gpus);
  write_trace(std::string(listing.characters) + '\n');
  listing_is_printed.store(true, std::memory_order_release);
}

int listed_gpu_index(const sycl::device& device) {
  const auto& gpus = hvl_gpu_global_devices_list;
  const auto found = std::find(gpus.begin(), gpus.end(), device);
  return found == gpus.end() ? -1 : static_cast<int>(found - gpus.begin());
}

} // namespace kestro::hvl::gpu
