// The buffer forms of the wrappers of a traced call.
#include <hvl/core.h>

#include "service/verbose.hpp"

namespace kestro::hvl::gpu {
namespace {

template <class T>
class verbose_buffer_start_kernel;
template <class T>
class verbose_buffer_end_kernel;

// A queue of its own: waiting for it waits for the buffer alone, not for what else the caller's queue does.
sycl::queue beside(const sycl::queue* q) {
  return q == nullptr ? sycl::queue() : sycl::queue(q->get_context(), q->get_device());
}

// Reading and writing: behind all earlier commands on the buffer, whatever they do with it.
template <class Name, class T>
void run_behind(sycl::buffer<T, 1>& r, sycl::handler& handler) {
  const sycl::accessor<T, 1, sycl::access_mode::read_write> all(r, handler);
  handler.single_task<Name>([all] { static_cast<void>(all); });
}

} // namespace

// Each submits its command group itself: a runtime that records where a command comes from then names it.
template <class T>
void verbose_buffer_start(double* time, sycl::buffer<T, 1> r, const sycl::queue* q) {
  verbose_depth_inc();
  if (verbose_mode() != 2)
    return;
  sycl::queue queue = beside(q);
  queue.submit([&](sycl::handler& handler) { run_behind<verbose_buffer_start_kernel<T>>(r, handler); });
  queue.wait();
  *time = -hvl_serv_dsecnd();
}

template <class T>
void verbose_buffer_end(double* time, sycl::buffer<T, 1> r, const sycl::queue* q) {
  verbose_depth_dec();
  if (verbose_mode() != 2)
    return;
  sycl::queue queue = beside(q);
  queue.submit([&](sycl::handler& handler) { run_behind<verbose_buffer_end_kernel<T>>(r, handler); });
  queue.wait();
  *time += hvl_serv_dsecnd();
}

#define KESTRO_HVL_INSTANTIATE(T)                                                                            \
  template void verbose_buffer_start(double*, sycl::buffer<T, 1>, const sycl::queue*);                       \
  template void verbose_buffer_end(double*, sycl::buffer<T, 1>, const sycl::queue*);
KESTRO_HVL_INSTANTIATE(float)
KESTRO_HVL_INSTANTIATE(double)
KESTRO_HVL_INSTANTIATE(std::int32_t)
KESTRO_HVL_INSTANTIATE(std::uint32_t)
KESTRO_HVL_INSTANTIATE(std::uint64_t)
#undef KESTRO_HVL_INSTANTIATE

} // namespace kestro::hvl::gpu
