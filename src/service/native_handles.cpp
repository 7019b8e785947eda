#include "service/native_handles.hpp"

#include <atomic>
#include <cstdint>
#include <utility>

#include <hvl/omp_interop.h>
#include <kestro/hvl/exceptions.hpp>
#include <kestro/hvl/interop.h>

#include "service/handle_cache.hpp"
#include "service/native_objects.hpp"
#include "service/omp_runtime.hpp"

namespace kestro::hvl::gpu {
namespace {

handle_cache<sycl::context> contexts;
handle_cache<sycl::queue> queues;
std::atomic<bool> cleanup_is_registered{false};

// Queues first: they are on the contexts.
void clear_caches(void*) {
  cleanup_is_registered.store(false);
  queues.clear();
  contexts.clear();
}

// Outside the caches' locks, which the clean-up takes.
void register_cleanup() {
  if (!cleanup_is_registered.load(std::memory_order_relaxed) && !cleanup_is_registered.exchange(true))
    hvl_sycl_register_destructor(clear_caches);
}

struct interop_properties {
  void* platform; // may be null
  void* device;
  void* context;
  void* queue; // may be null
  hvl_gpu_backend_t backend;
  bool is_in_order;
};

[[noreturn]] void refuse(const char* info) {
  throw invalid_argument("rng", "offload", info);
}

void* handle_of(void* interop, int property) {
  void* handle = nullptr;
  return hvl_tgt_get_interop_property(interop, property, &handle) == HVL_TGT_OK ? handle : nullptr;
}

interop_properties read(void* interop) {
  int status = HVL_OMP_IRC_OTHER;
  const std::intptr_t runtime = hvl_omp_get_interop_int(interop, HVL_OMP_IPR_FR_ID, &status);
  void* backend = nullptr;
  if (status != HVL_OMP_IRC_SUCCESS || runtime == 0 ||
      hvl_tgt_get_interop_property(interop, HVL_TGT_BACKEND, &backend) != HVL_TGT_OK)
    refuse("interop");
  const interop_properties properties{
      handle_of(interop, HVL_TGT_PLATFORM),
      handle_of(interop, HVL_TGT_DEVICE),
      handle_of(interop, HVL_TGT_CONTEXT),
      handle_of(interop, HVL_TGT_QUEUE),
      static_cast<hvl_gpu_backend_t>(reinterpret_cast<std::intptr_t>(backend)),
      hvl_omp_get_interop_int(interop, HVL_OMP_IPR_IN_ORDER, nullptr) != 0};
  if (properties.device == nullptr)
    refuse("interop without a device");
  if (properties.context == nullptr)
    refuse("interop without a context");
  return properties;
}

// A native queue is behind its device's handle, so the two orders of a device and a context are free for the
// two kinds of queue that have no native one.
sycl::queue& lookup_own_queue(const interop_properties& interop, const sycl::context& context,
                              const sycl::device& device) {
  const sycl::property::queue::enable_profiling profiling;
  if (interop.is_in_order)
    return queues.find_or_create({interop.context, interop.device}, [&] {
      return sycl::queue(context, device, {profiling, sycl::property::queue::in_order()});
    });
  return queues.find_or_create({interop.device, interop.context},
                               [&] { return sycl::queue(context, device, {profiling}); });
}

} // namespace

sycl::context& lookup_and_cache_qorin_context(void* handle, void* second_handle, hvl_gpu_backend_t backend,
                                              sycl::device* device) {
  register_cleanup();
  return contexts.find_or_create({handle, second_handle},
                                 [&] { return context_of_native(handle, backend, *device); });
}

sycl::queue& lookup_and_cache_qorin_queue(void* handle, hvl_gpu_backend_t backend, sycl::context context,
                                          void* queue_handle) {
  register_cleanup();
  return queues.find_or_create({handle, queue_handle}, [&] {
    return queue_of_native(queue_handle, backend, context, device_of_native(handle, backend));
  });
}

queue_and_context lookup_and_cache_qorin_queue_and_context(void* interop) {
  const interop_properties properties = read(interop);
  sycl::device device = device_of_native(properties.device, properties.backend);
  if (properties.platform != nullptr &&
      device.get_platform() != platform_of_native(properties.platform, properties.backend))
    refuse("interop with a device of another platform");
  sycl::context& context =
      lookup_and_cache_qorin_context(properties.context, properties.device, properties.backend, &device);
  if (properties.queue == nullptr)
    return {lookup_own_queue(properties, context, device), context};
  return {lookup_and_cache_qorin_queue(properties.device, properties.backend, context, properties.queue),
          context};
}

} // namespace kestro::hvl::gpu
