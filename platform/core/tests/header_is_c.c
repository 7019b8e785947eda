/* The header is C11: using each kind of declaration proves it. */
#include <hvl/core.h>

static hvl_serv_lock_t lock = HVL_SERV_LOCK_INIT;

int main(void) {
  hvl_serv_lock(&lock);
  void* memory = hvl_serv_malloc(1, 64);
  hvl_serv_unlock(&lock);
  const int failed = memory == NULL || hvl_serv_isa_name(HVL_ISA_SCALAR) == NULL;
  hvl_serv_free(memory);
  return failed;
}
