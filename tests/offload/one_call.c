/* One offloaded call. */
#include <kestro/hvl/offload.h>

int main(void) {
  uint32_t value = 0;
  int stream = 0, interop = 0;
  return hvl_vqs_viRngUniformBits_omp_offload_ilp64(0, &stream, 1, &value, &interop);
}
