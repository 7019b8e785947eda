// The queries of an OpenMP runtime, for its own objects; others are passed on to the product's runtime.
#include "fake_runtime.hpp"

#include <cstdint>

#include <dlfcn.h>

namespace {

fake_interop* own(void* interop) {
  auto* object = static_cast<fake_interop*>(interop);
  return object != nullptr && object->magic == 0xFA4E ? object : nullptr;
}

void complete(void* interop) {
  ++own(interop)->completions;
}

template <class Function>
Function* next(Function*, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) std::intptr_t omp_get_interop_int(void* interop, int property,
                                                                         int* code);
__attribute__((visibility("default"))) int hvl_tgt_get_interop_property(void* interop, int number,
                                                                        void** value);

std::intptr_t omp_get_interop_int(void* interop, int property, int* code) {
  if (const fake_interop* object = own(interop)) {
    if (code != nullptr)
      *code = 0;
    return property == -1 ? object->foreign_runtime : 0;
  }
  return next(&omp_get_interop_int, "omp_get_interop_int")(interop, property, code);
}

int hvl_tgt_get_interop_property(void* interop, int number, void** value) {
  if (const fake_interop* object = own(interop)) {
    if (number != 4 || object->completion_error != 0)
      return object->completion_error != 0 ? object->completion_error : -99;
    *value = reinterpret_cast<void*>(&complete);
    return 0;
  }
  return next(&hvl_tgt_get_interop_property, "hvl_tgt_get_interop_property")(interop, number, value);
}
}
