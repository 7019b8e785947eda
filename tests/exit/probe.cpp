// Ends with work in flight: exit_probe cpu|gpu|exit_elsewhere|LIBRARY.
#include "work.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <unistd.h>

namespace {

/// The main thread goes on.
[[noreturn]] void exit_elsewhere() {
  start_work(sycl::device(sycl::cpu_selector_v));
  sycl::queue q;
  kestro::hvl::rng::philox4x32x10 engine(q, 2);
  std::vector<float> values(100000);
  std::thread([] { std::exit(0); }).detach();
  for (;;)
    kestro::hvl::rng::generate(kestro::hvl::rng::uniform<float>(), engine, 100000, values.data()).wait();
}

bool unload(const char* name) {
  void* const library = ::dlopen(name, RTLD_NOW);
  if (library == nullptr)
    return false;
  reinterpret_cast<void (*)()>(::dlsym(library, "start_work_on_the_cpu"))();
  return ::dlclose(library) == 0;
}

} // namespace

int main(int, char** words) {
  ::alarm(60); // a process that hangs is ended, and seen to be
  std::fputs("buffered", stdout);
  const std::string ending = words[1];
  if (ending == "cpu")
    start_work(sycl::device(sycl::cpu_selector_v));
  else if (ending == "gpu")
    start_work(sycl::device(sycl::gpu_selector_v));
  else if (ending == "exit_elsewhere")
    exit_elsewhere();
  else if (!unload(words[1]))
    return 1;
}
