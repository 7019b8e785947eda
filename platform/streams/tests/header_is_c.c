#include <hvl/streams.h>
#include <hvl/streams_record.h>

#include <stddef.h>
#include <stdint.h>

_Static_assert(offsetof(vqs_mt19937_record, words) == 16, "fields start at byte 16");
_Static_assert(offsetof(vqs_mt19937_record, position) == 2512, "the position lies at byte 2512");
_Static_assert(offsetof(vqs_philox4x32x10_record, remaining) == 40, "seven words from byte 16");
_Static_assert(offsetof(vqs_mcg59_record, a) == 24, "x and a from byte 16");

int main(void) {
  vqs_stream stream = NULL;
  uint32_t word = 0;
  if (vqsNewStream_64(&stream, VQS_ENGINE_PHILOX4X32X10, 1) != VQS_STATUS_OK)
    return 1;
  const int status = viRngUniformBits_64(0, stream, 1, &word);
  return vqsDeleteStream_64(&stream) != VQS_STATUS_OK || status != VQS_STATUS_OK || word != 0xe3e80670u;
}
