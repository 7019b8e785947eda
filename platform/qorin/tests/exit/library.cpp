// A library that is unloaded with work in flight.
#include "memory.hpp"

extern "C" __attribute__((visibility("default"))) void start_work() {
  static sycl::queue q{sycl::property::queue::in_order()};
  static memory late;
  for (int i = 0; i < 20; ++i)
    write_to(late.values.data(), q);
}
