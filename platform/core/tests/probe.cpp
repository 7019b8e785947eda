// A small program whose environment and end a test controls: each verb is one step, in order.
#include <hvl/core.h>

#include <cstdlib>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr int threads = 4;
constexpr int lines_per_thread = 200;

void first_cleanup() {
  hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "first\n");
}
void second_cleanup() {
  hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "second\n");
}
void withdrawn_cleanup() {
  hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "withdrawn\n");
}

void register_cleanups() {
  hvl_serv_core_register_sycl_destructor(first_cleanup);
  hvl_serv_core_register_sycl_destructor(withdrawn_cleanup);
  hvl_serv_core_register_sycl_destructor(second_cleanup);
  hvl_serv_core_register_sycl_destructor(first_cleanup);
  hvl_serv_core_unregister_sycl_destructor(withdrawn_cleanup);
}

void append_lines(const char* name) {
  std::vector<std::thread> workers;
  for (int worker = 0; worker != threads; ++worker)
    workers.emplace_back([=] {
      for (int line = 0; line != lines_per_thread; ++line) {
        FILE* file = hvl_serv_fopen(name, "a");
        hvl_serv_fprintf_s(file, "%0*d|\n", 6000, worker);
        hvl_serv_fclose(file);
      }
    });
  for (std::thread& worker : workers)
    worker.join();
}

} // namespace

int main(int count, char** words) {
  for (int index = 1; index < count; ++index) {
    const std::string_view verb = words[index];
    if (verb == "mode")
      hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "%d\n", *hvl_serv_verbose_mode());
    else if (verb == "file")
      hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "<%s>\n", hvl_serv_verbose_output_file_mode());
    else if (verb == "header")
      hvl_serv_print_verbose_header(7);
    else if (verb == "isa")
      hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "%d\n", hvl_serv_isa());
    else if (verb == "force-scalar")
      hvl_serv_set_isa(HVL_ISA_SCALAR);
    else if (verb == "automatic")
      hvl_serv_set_isa(-1);
    else if (verb == "cleanups")
      register_cleanups();
    else if (verb == "append")
      append_lines(words[++index]);
    else
      return EXIT_FAILURE;
  }
}
