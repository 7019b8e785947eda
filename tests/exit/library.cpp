// A library that is unloaded with work in flight.
#include "work.hpp"

extern "C" __attribute__((visibility("default"))) void start_work_on_the_cpu() {
  start_work(sycl::device(sycl::cpu_selector_v));
}
