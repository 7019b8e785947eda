#include "service/traced_call.hpp"

#include <locale>
#include <sstream>
#include <utility>

#include "service/demangle.hpp"

namespace kestro::hvl::gpu {
namespace {

// In the classic locale, whatever the program has made its own: no separators between digits.
std::ostringstream describe(const char* form, const call_description& call) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << "kestro::hvl::rng::generate " << form << " call with parameters "
       << "distribution = " << demangle(call.distribution).c_str()
       << ", engine = " << demangle(call.engine).c_str() << ", n = " << call.n;
  return text;
}

std::string describe_usm(const call_description& call, const void* r) {
  std::ostringstream text = describe("USM", call);
  text << ", r = " << r;
  return text.str();
}

} // namespace

// Once this constructor is done the destructor runs, even when the one that delegates to it throws.
traced_call::traced_call(sycl::queue& queue, std::string description)
    : queue_(queue), description_(std::move(description)), is_timed_(verbose_mode() == 2) {}

traced_call::traced_call(sycl::queue& queue, const call_description& call, const void* r,
                         const std::vector<sycl::event>& dependencies)
    : traced_call(queue, describe_usm(call, r)) {
  if (is_timed_)
    verbose_usm_start(&host_time_, dependencies);
  else
    verbose_depth_inc();
}

template <class T>
traced_call::traced_call(sycl::queue& queue, const call_description& call, const sycl::buffer<T, 1>& r)
    : traced_call(queue, describe("Buffer", call).str()) {
  if (is_timed_)
    verbose_buffer_start(&host_time_, r, &queue);
  else
    verbose_depth_inc();
}

traced_call::~traced_call() {
  if (is_open_)
    verbose_depth_dec();
}

sycl::event traced_call::finish(sycl::event event) {
  is_open_ = false;
  if (is_timed_)
    verbose_usm_end(&host_time_, event);
  else
    verbose_depth_dec();
  print(event);
  return event;
}

template <class T>
void traced_call::finish(const sycl::event& event, const sycl::buffer<T, 1>& r) {
  is_open_ = false;
  if (is_timed_)
    verbose_buffer_end(&host_time_, r, &queue_);
  else
    verbose_depth_dec();
  print(event);
}

void traced_call::print(const sycl::event& event) {
  verbose_register_event(event);
  print_verbose_gpu_info(&queue_, description_.c_str(), host_time_);
}

#define KESTRO_HVL_INSTANTIATE(T)                                                                            \
  template traced_call::traced_call(sycl::queue&, const call_description&, const sycl::buffer<T, 1>&);       \
  template void traced_call::finish(const sycl::event&, const sycl::buffer<T, 1>&);
KESTRO_HVL_INSTANTIATE(float)
KESTRO_HVL_INSTANTIATE(double)
KESTRO_HVL_INSTANTIATE(std::int32_t)
KESTRO_HVL_INSTANTIATE(std::uint32_t)
KESTRO_HVL_INSTANTIATE(std::uint64_t)
#undef KESTRO_HVL_INSTANTIATE

} // namespace kestro::hvl::gpu
