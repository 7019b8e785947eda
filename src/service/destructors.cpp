#include <cstdint>
#include <cstdlib>
#include <new>

#include <hvl/core.h>
#include <kestro/hvl/interop.h>

namespace {

constexpr std::int32_t most_functions = 32;

struct destructor_table {
  void (*functions[most_functions])(void*);
  std::int32_t count;
};

destructor_table* table = nullptr;
hvl_serv_lock_t table_lock = HVL_SERV_LOCK_INIT;

class table_guard {
 public:
  table_guard() { hvl_serv_lock(&table_lock); }
  table_guard(const table_guard&) = delete;
  table_guard& operator=(const table_guard&) = delete;
  ~table_guard() { hvl_serv_unlock(&table_lock); }
};

// `atexit` also serves unloading: the handlers of a library run when it goes. It has the table dropped before
// the core library drops what it knows, so the registration there is there for whoever drops that one first.
void make_table() {
  void* const memory = hvl_serv_malloc(sizeof(destructor_table), 64);
  if (memory == nullptr)
    throw std::bad_alloc();
  table = new (memory) destructor_table{};
  std::atexit(hvl_sycl_destructor);
  hvl_serv_core_register_sycl_destructor(hvl_sycl_destructor);
}

bool add(void (*function)(void*)) {
  const table_guard guard;
  if (table == nullptr)
    make_table();
  if (table->count >= most_functions)
    return false;
  table->functions[table->count++] = function;
  return true;
}

} // namespace

void hvl_sycl_init_destructor() {
  const table_guard guard;
  if (table == nullptr)
    make_table();
}

// The process ends without the lock, since its end calls the registered functions.
void hvl_sycl_register_destructor(void (*function)(void*)) {
  if (add(function))
    return;
  hvl_serv_print(HVL_SERV_PRINT_WARNING, HVL_SERV_MESSAGE_TOO_MANY_CLEANUPS);
  std::exit(EXIT_FAILURE);
}

void hvl_sycl_destructor() {
  const table_guard guard;
  if (table == nullptr)
    return;
  for (std::int32_t index = table->count; index-- > 0;)
    if (table->functions[index] != nullptr)
      table->functions[index](table);
  hvl_serv_free(table);
  table = nullptr;
  // This library may be unloaded while the core library stays.
  hvl_serv_core_unregister_sycl_destructor(hvl_sycl_destructor);
}
