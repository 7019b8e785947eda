#include "service/trace_output.hpp"

#include <hvl/core.h>

namespace kestro::hvl::gpu {
namespace {

hvl_serv_lock_t output_lock = HVL_SERV_LOCK_INIT;

} // namespace

void write_trace(const std::string& text) {
  const char* const name = hvl_serv_verbose_output_file_mode();
  if (*name != '\0') {
    if (FILE* const file = hvl_serv_fopen(name, "a")) {
      hvl_serv_fprintf_s(file, "%s", text.c_str());
      hvl_serv_fclose(file);
      return;
    }
    hvl_serv_print_text(HVL_SERV_PRINT_WARNING, "HVL_VERBOSE WARNING: %s\n",
                        "unable to open output file. Print to STDOUT");
  }
  hvl_serv_lock(&output_lock);
  hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "%s", text.c_str());
  hvl_serv_unlock(&output_lock);
}

} // namespace kestro::hvl::gpu
