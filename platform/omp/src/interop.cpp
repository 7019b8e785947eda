#include <hvl/omp_interop.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

namespace {

constexpr std::uint32_t live_magic = 0x504F4948; // "HIOP" in memory
constexpr int lowest_standard_property = HVL_OMP_IPR_TARGETSYNC;

enum backend : std::intptr_t { backend_opencl = 0, backend_zerlin = 1 };

struct interop_object {
  explicit interop_object(const hvl_omp_interop_description& d) : description(d) {}
  ~interop_object() { magic = 0; }

  std::uint32_t magic = live_magic;
  const hvl_omp_interop_description description;
  std::mutex mutex;
  std::condition_variable completed;
  std::int64_t completions = 0; // under mutex
};

interop_object* object_of(hvl_omp_interop interop) noexcept {
  auto* object = static_cast<interop_object*>(interop);
  return object != nullptr && object->magic == live_magic ? object : nullptr;
}

void report_completed(hvl_omp_interop interop) {
  interop_object* object = object_of(interop);
  if (object == nullptr)
    return;
  if (object->description.on_completed != nullptr)
    object->description.on_completed(interop, object->description.user_data);
  // Notified under the lock: a waiter may destroy the object as soon as it holds the lock.
  const std::lock_guard lock(object->mutex);
  ++object->completions;
  object->completed.notify_all();
}

intptr_t answer(int* ret_code, int code, intptr_t value = 0) {
  if (ret_code != nullptr)
    *ret_code = code;
  return value;
}

int give(void** value, void* handle) {
  if (handle == nullptr)
    return HVL_TGT_NO_VALUE;
  *value = handle;
  return HVL_TGT_OK;
}

} // namespace

intptr_t omp_get_interop_int(const hvl_omp_interop interop, int property_id, int* ret_code) {
  if (interop == nullptr)
    return answer(ret_code, HVL_OMP_IRC_EMPTY);
  const interop_object* object = object_of(interop);
  if (object == nullptr)
    return answer(ret_code, HVL_OMP_IRC_OTHER);
  switch (property_id) {
  case HVL_OMP_IPR_FR_ID:
    return answer(ret_code, HVL_OMP_IRC_SUCCESS, object->description.foreign_runtime);
  case HVL_OMP_IPR_DEVICE_NUM:
    return answer(ret_code, HVL_OMP_IRC_SUCCESS, object->description.device_number);
  case HVL_OMP_IPR_IN_ORDER:
    return answer(ret_code, HVL_OMP_IRC_SUCCESS, object->description.in_order != 0);
  case HVL_OMP_IPR_VENDOR:
    return answer(ret_code, HVL_OMP_IRC_NO_VALUE);
  case HVL_OMP_IPR_FR_NAME:
  case -4: // the vendor's name
    return answer(ret_code, HVL_OMP_IRC_TYPE_STR);
  default: // platform, device, device_context, targetsync
    return answer(ret_code, property_id < 0 && property_id >= lowest_standard_property
                                ? HVL_OMP_IRC_TYPE_PTR
                                : HVL_OMP_IRC_OUT_OF_RANGE);
  }
}

int hvl_tgt_get_interop_property(hvl_omp_interop interop, int number, void** value) {
  const interop_object* object = object_of(interop);
  if (object == nullptr)
    return HVL_TGT_BAD_INTEROP;
  if (value == nullptr)
    return HVL_TGT_BAD_ARGUMENT;
  const hvl_omp_interop_description& d = object->description;
  switch (number) {
  case HVL_TGT_COMPLETED:
    return give(value, reinterpret_cast<void*>(&report_completed));
  case HVL_TGT_PLATFORM:
    return give(value, d.platform);
  case HVL_TGT_DEVICE:
    return give(value, d.device);
  case HVL_TGT_CONTEXT:
    return give(value, d.context);
  case HVL_TGT_QUEUE:
    return give(value, d.queue);
  case HVL_TGT_BACKEND:
    *value =
        reinterpret_cast<void*>(d.foreign_runtime == HVL_OMP_FR_OPENCL ? backend_opencl : backend_zerlin);
    return HVL_TGT_OK;
  default:
    return HVL_TGT_NO_PROPERTY;
  }
}

hvl_omp_interop hvl_omp_interop_create(const hvl_omp_interop_description* description) {
  if (description == nullptr || description->context == nullptr)
    return nullptr;
  const int runtime = description->foreign_runtime;
  if (runtime != HVL_OMP_FR_OPENCL && runtime != HVL_OMP_FR_SYCL && runtime != HVL_OMP_FR_ZERLIN)
    return nullptr;
  return new (std::nothrow) interop_object(*description);
}

int hvl_omp_interop_destroy(hvl_omp_interop* interop) {
  if (interop == nullptr)
    return HVL_TGT_BAD_ARGUMENT;
  interop_object* object = object_of(*interop);
  if (object == nullptr)
    return HVL_TGT_BAD_INTEROP;
  delete object;
  *interop = nullptr;
  return HVL_TGT_OK;
}

int64_t hvl_omp_interop_completions(hvl_omp_interop interop) {
  interop_object* object = object_of(interop);
  if (object == nullptr)
    return HVL_TGT_BAD_INTEROP;
  const std::lock_guard lock(object->mutex);
  return object->completions;
}

int hvl_omp_interop_wait(hvl_omp_interop interop, int64_t completions, int64_t milliseconds) {
  interop_object* object = object_of(interop);
  if (object == nullptr)
    return HVL_TGT_BAD_INTEROP;
  const auto enough = [&] { return object->completions >= completions; };
  std::unique_lock lock(object->mutex);
  if (milliseconds < 0) {
    object->completed.wait(lock, enough);
    return HVL_TGT_OK;
  }
  constexpr std::int64_t longest = 1'000'000'000'000; // some thirty years; the clock's range ends soon after
  // On the system clock: g++ 12's thread sanitizer does not know the wait on a steady one.
  const auto until =
      std::chrono::system_clock::now() + std::chrono::milliseconds(std::min(milliseconds, longest));
  return object->completed.wait_until(lock, until, enough) ? HVL_TGT_OK : HVL_TGT_NO_VALUE;
}
