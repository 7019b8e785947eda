// Ends in one of many ways with work in flight: qorin_exit_probe ENDING [LIBRARY].
#include "memory.hpp"

#include <future>
#include <map>
#include <thread>

#include <dlfcn.h>
#include <unistd.h>

namespace {

/// A program that returns, calls exit or quick_exit with work in flight.
void start_work(const sycl::device& where) {
  static sycl::queue q(where, sycl::property::queue::in_order());
  static memory late; // made after the queue, hence destroyed before it
  for (int i = 0; i < 20; ++i)
    write_to(late.values.data(), q);
}

void return_cpu() {
  start_work(sycl::device(sycl::cpu_selector_v));
}
void return_gpu() {
  start_work(sycl::device(sycl::gpu_selector_v));
}

void quick_exit() {
  start_work(sycl::device());
  std::fflush(stdout);
  std::quick_exit(0);
}

/// The main thread goes on to submit and to wait.
void exit_elsewhere() {
  sycl::queue q;
  static memory used;
  int* const to = used.values.data();
  write_to(to, q).wait();
  std::thread([] { std::exit(0); }).detach();
  for (;;)
    write_to(to, q).wait();
}

void exit_in_a_task() {
  static sycl::queue q;
  static memory used;
  write_to(used.values.data(), q);
  sycl::event last = q.submit([](sycl::handler& h) { h.host_task([] { std::exit(0); }); });
  write_to(used.values.data(), q);
  last.wait();
  std::_Exit(4);
}

void exit_in_a_kernel() {
  static sycl::queue q;
  static memory used;
  write_to(used.values.data(), q);
  q.single_task([] { std::exit(0); }).wait();
  std::_Exit(4);
}

/// Where it can only be in a part of a launch that another thread took over.
void exit_in_a_range() {
  static sycl::queue q;
  static std::atomic<std::thread::id> launching;
  q.parallel_for(1 << 20, [](sycl::id<1> i) {
     if (i == 0)
       launching = std::this_thread::get_id();
     for (int spin = 0; spin < 10000; ++spin)
       if (launching != std::this_thread::get_id())
         std::exit(0);
   }).wait();
  std::_Exit(4);
}

/// Two tasks cannot end: the first waits for what comes too late, the other for the first. The third must not start.
void blocked() {
  static sycl::queue q;
  static sycl::event first;
  static struct late {
    ~late() {
      opened.set_value();
      first.wait();
    }
    std::promise<void> opened;
  } opens;
  std::promise<void> started;
  first = q.submit([&](sycl::handler& h) {
    h.host_task([&, opened = opens.opened.get_future().share()] {
      started.set_value();
      opened.wait();
    });
  });
  q.submit([&](sycl::handler& h) { h.host_task([] { first.wait(); }); });
  q.submit([&](sycl::handler& h) {
    h.depends_on(first);
    h.host_task([] { std::_Exit(3); });
  });
  started.get_future().wait();
}

/// Waiting goes on: a static buffer waits for its commands and then writes back, through a long chain of them.
void waited_for_at_the_end() {
  static struct result {
    ~result() { std::printf(" %d", value); }
    int value = 0;
  } written;
  static sycl::buffer<int> buffer(&written.value, 1);
  static sycl::queue q;
  for (int i = 0; i < 200; ++i)
    q.submit([&](sycl::handler& h) {
      sycl::accessor value(buffer, h);
      h.parallel_for(sycl::nd_range<1>(1, 1), [=](sycl::nd_item<1> item) {
        sycl::group_barrier(item.get_group());
        value[0] += 1;
      });
    });
}

/// A static object joins a thread that submits and waits.
void joined_at_the_end() {
  static sycl::queue q;
  static struct worker {
    ~worker() {
      thread.join();
      std::printf(" %d", done);
    }
    int done = 0;
    std::thread thread{[this] {
      for (int i = 0; i < 300; ++i)
        q.submit([this](sycl::handler& h) { h.host_task([this] { ++done; }); }).wait();
    }};
  } counts;
  q.submit([](sycl::handler& h) { h.host_task([] {}); }).wait();
}

void unload(const char* library) {
  void* const loaded = ::dlopen(library, RTLD_NOW);
  if (loaded == nullptr)
    std::printf(" %s", ::dlerror());
  reinterpret_cast<void (*)()>(::dlsym(loaded, "start_work"))();
  ::dlclose(loaded);
  std::fputs(::dlopen(library, RTLD_NOW | RTLD_NOLOAD) == nullptr ? " unloaded" : " still there", stdout);
}

const std::map<std::string, void (*)()> kinds = {
    {"return_cpu", return_cpu},
    {"return_gpu", return_gpu},
    {"quick_exit", quick_exit},
    {"exit_elsewhere", exit_elsewhere},
    {"exit_in_a_task", exit_in_a_task},
    {"exit_in_a_kernel", exit_in_a_kernel},
    {"exit_in_a_range", exit_in_a_range},
    {"blocked", blocked},
    {"waited_for_at_the_end", waited_for_at_the_end},
    {"joined_at_the_end", joined_at_the_end},
};

} // namespace

int main(int count, char** words) {
  ::alarm(60); // a process that hangs is ended, and seen to be
  std::fputs("buffered", stdout);
  if (count == 3)
    unload(words[2]);
  else
    kinds.at(words[1])();
}
