#include "service/omp_runtime.hpp"

#include <cstdlib>

#include <dlfcn.h>

#include <hvl/core.h>

namespace kestro::hvl::gpu {
namespace {

using get_interop_int_function = std::intptr_t (*)(void* interop, int property, int* ret_code);

get_interop_int_function find_get_interop_int() {
  constexpr const char* name = "omp_get_interop_int";
  void* found = dlsym(RTLD_DEFAULT, name);
  if (found == nullptr)
    if (void* library = hvl_omp_load_lib())
      found = dlsym(library, name);
  if (found == nullptr) {
    hvl_serv_print(HVL_SERV_PRINT_WARNING, HVL_SERV_MESSAGE_NO_SYMBOL, "'omp_get_interop_int'");
    std::exit(2);
  }
  return reinterpret_cast<get_interop_int_function>(found);
}

} // namespace

std::intptr_t hvl_omp_get_interop_int(void* interop, int property, int* ret_code) {
  static const get_interop_int_function function = find_get_interop_int();
  return function(interop, property, ret_code);
}

void* hvl_omp_load_lib() {
  return dlopen("libhvl_omp.so.0", RTLD_NOW | RTLD_LOCAL);
}

} // namespace kestro::hvl::gpu
