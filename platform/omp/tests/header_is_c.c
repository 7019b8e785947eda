/* The header serves C11 programs: an object made, told of two completions, waited for and destroyed. */
#include <hvl/omp_interop.h>

#include <stddef.h>
#include <string.h>

static void count(hvl_omp_interop interop, void* user_data) {
  (void)interop;
  ++*(int*)user_data;
}

int main(void) {
  int native = 0, calls = 0;
  hvl_omp_interop_description description = {.foreign_runtime = HVL_OMP_FR_ZERLIN, .context = &native};
  description.on_completed = count;
  description.user_data = &calls;
  hvl_omp_interop interop = hvl_omp_interop_create(&description);
  void* found = NULL;
  hvl_omp_completed_function completed = NULL;
  if (hvl_tgt_get_interop_property(interop, HVL_TGT_COMPLETED, &found) != HVL_TGT_OK)
    return 1;
  memcpy(&completed, &found, sizeof completed);
  completed(interop);
  completed(interop);
  if (hvl_omp_interop_wait(interop, 2, 0) != HVL_TGT_OK || calls != 2)
    return 2;
  return hvl_omp_interop_destroy(&interop) != HVL_TGT_OK || interop != NULL;
}
