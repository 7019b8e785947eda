// Loads and unloads the library as a plug-in: unload_probe LIBRARY [LIBRARY THAT STAYS].
#include <cstdio>
#include <dlfcn.h>

namespace {

void first(void*) {
  std::puts("first");
}
void second(void*) {
  std::puts("second");
}

} // namespace

int main(int count, char** words) {
  if (count > 2 && ::dlopen(words[2], RTLD_NOW) == nullptr)
    return 1;
  void* const library = ::dlopen(words[1], RTLD_NOW);
  if (library == nullptr) {
    std::puts(::dlerror());
    return 1;
  }
  using add = void (*)(void (*)(void*));
  const auto register_destructor = reinterpret_cast<add>(::dlsym(library, "hvl_sycl_register_destructor"));
  register_destructor(first);
  register_destructor(second);
  std::puts("closing");
  ::dlclose(library);
  std::puts(::dlopen(words[1], RTLD_NOW | RTLD_NOLOAD) == nullptr ? "unloaded" : "still there");
}
