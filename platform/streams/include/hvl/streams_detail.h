/* Parts of the stream library's machinery that device code's hosts use. Statuses as in hvl/streams.h. */
#ifndef HVL_STREAMS_DETAIL_H
#define HVL_STREAMS_DETAIL_H

#include "hvl/streams.h"

#ifdef __cplusplus
extern "C" {
#endif

/* mt19937: replaces 624 consecutive words of the (untempered) sequence by the 624 words that lie `distance`
 * words further. The polynomials of the last few distances are kept. */
HVL_STREAMS_API int vqsMt19937Jump(uint32_t* words, uint64_t distance);

/* The jump polynomial of a distance of at least 1, for jumps made elsewhere: 624 words, bit i % 32 of word i
 * / 32 being coefficient i (0 <= i < 19937). Word distance + j of the sequence is the exclusive or of the
 * words 1 + i + j over all i whose bit is set. */
HVL_STREAMS_API int vqsMt19937JumpPolynomial(uint64_t distance, uint32_t* polynomial);

/* r250: the same for its sequence, 8 words of coefficients 0 <= i < 250. */
HVL_STREAMS_API int vqsR250JumpPolynomial(uint64_t distance, uint32_t* polynomial);

/* sfmt19937: the same in units of four words. The distance is a multiple of 4; 624 words of coefficients 0 <= i < 19968,
 * and word distance + j is the exclusive or of the words 4 (1 + i) + j. */
HVL_STREAMS_API int vqsSfmt19937JumpPolynomial(uint64_t distance, uint32_t* polynomial);

/* mt2203: the same for the member with this twist constant, 70 words of coefficients 0 <= i < 2240. */
HVL_STREAMS_API int vqsMt2203JumpPolynomial(uint32_t matrix, uint64_t distance, uint32_t* polynomial);

/* As vqsSkipAheadStreamEx_64, for streams of every engine that a seed reproduces, whether or not it offers skips. */
HVL_STREAMS_API int vqsAdvanceStream_64(vqs_stream stream, int64_t count, const uint64_t* words);

/* How far the first word of a value, brought to units of 2^-32, may be from the value's uniform. The farthest are words of
 * mrg32k3a, whose greatest is 2^32 - 209. */
enum { VQS_THRESHOLD_MARGIN = 256 };

/* A discrete law by its thresholds (hvl/math/transforms/thresholds.hpp), which hvl/streams_thresholds.hpp builds. */
typedef struct vqs_thresholds {
  const double* upper; /* `count` of them, ascending, and one above 1 */
  const uint32_t* low; /* `upper` in units of 2^-32 less the margin; null or two more than `count` */
  const uint32_t*
      cells; /* null, or for each of 2^cell_bits equal parts of [0, 1) how many thresholds are surely passed
                            there, times 2, plus 1 where more than one may be left */
  uint32_t count;
  uint32_t cell_bits;
  int32_t origin; /* the value below all thresholds */
  int32_t step;   /* 1 or -1 at every threshold that is passed */
} vqs_thresholds;

/* Values of the law; two words a value. `low` and `cells` are for speed. */
HVL_STREAMS_API int viRngThresholds_64(vqs_stream stream, int64_t n, int32_t* r,
                                       const vqs_thresholds* thresholds);

#ifdef __cplusplus
}
#endif

#endif
