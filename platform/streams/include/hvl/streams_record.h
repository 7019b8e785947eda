/* The record behind a stream handle. Its layout is a contract: device code reads the fields of a record, and
 * for mt19937 writes them back. All fields are in the machine's byte order (little-endian). */
#ifndef HVL_STREAMS_RECORD_H
#define HVL_STREAMS_RECORD_H

#include <stdint.h>

typedef struct {
  uint32_t magic; /* marks a live stream */
  int32_t engine; /* engine identifier */
  uint32_t record_bytes;
  uint32_t reserved; /* 0 */
} vqs_record_header;

/* Next outputs: the last `remaining` (0..4) words of block(counter - 1), then block(counter), ... */
typedef struct {
  vqs_record_header header;
  uint32_t k0, k1;         /* key, low word first */
  uint32_t c0, c1, c2, c3; /* counter, least significant word first */
  uint32_t remaining;
} vqs_philox4x32x10_record;

/* As above, with a key of 128 bits. */
typedef struct {
  vqs_record_header header;
  uint32_t k0, k1, k2, k3;
  uint32_t c0, c1, c2, c3;
  uint32_t remaining;
} vqs_ars5_record;

/* The three last values of each component, oldest first. */
typedef struct {
  vqs_record_header header;
  uint32_t x0, x1, x2; /* below 4294967087, not all zero */
  uint32_t y0, y1, y2; /* below 4294944443, not all zero */
  /* Generation on devices may take values from substreams in turn, each 2^76 steps from the next. This library saves,
   * copies and otherwise leaves alone what says so: its own generators and skips work on the one sequence above. */
  uint32_t substreams; /* their number; 0 without them */
  uint32_t offset;     /* of them, as many have given their value of the row that begins at the state above */
  uint32_t row_steps;  /* 1 or 2 steps that this row takes of each; 0 when the offset is 0 */
} vqs_mrg32k3a_record;

/* x is the next output, in [1, 2^31 - 1). */
typedef struct {
  vqs_record_header header;
  uint32_t x, a;
} vqs_mcg31m1_record;

/* x is the next output, in [1, 2^59). */
typedef struct {
  vqs_record_header header;
  uint64_t x, a;
} vqs_mcg59_record;

/* words[position] is the next one to temper; 624 says that the block is used up and is regenerated before the
 * next draw. */
typedef struct {
  vqs_record_header header;
  uint32_t words[624];
  uint32_t position; /* 0..624 */
} vqs_mt19937_record;

/* As above, with 69 words. The header's engine is VQS_ENGINE_MT2203 + the member's index, whose parameters follow. */
typedef struct {
  vqs_record_header header;
  uint32_t words[69];
  uint32_t position; /* 0..69 */
  uint32_t matrix;   /* the twist constant */
  uint32_t tempering_b, tempering_c;
} vqs_mt2203_record;

/* 156 units of four words, the least first, not all zero. words[position] is the next output; 624 as above. */
typedef struct {
  vqs_record_header header;
  uint32_t words[624];
  uint32_t position; /* 0..624 */
} vqs_sfmt19937_record;

/* The header's engine is VQS_ENGINE_WICHMANN_HILL + the member's index, from which the moduli follow. The next output is
 * that of x; both x and a are from 1 up to the modulus of their component. */
typedef struct {
  vqs_record_header header;
  uint32_t x[4], a[4];
} vqs_wichmann_hill_record;

/* The last 250 words, in a ring. words[position] is the oldest, whose place the next one takes: a word's place is its
 * number in the sequence modulo 250. The words span all 32 bits. */
typedef struct {
  vqs_record_header header;
  uint32_t words[250];
  uint32_t position; /* 0..249 */
} vqs_r250_record;
/* A digital sequence in base 2: 32 direction numbers for each dimension, those of dimension d at byte 256 + 132 d, and behind
 * them what the host keeps of its own. */
typedef struct {
  vqs_record_header header;
  uint32_t point;      /* number of the point that the next output belongs to */
  uint32_t coordinate; /* of the next output, below dimensions */
  uint32_t dimensions;
  uint32_t own;          /* 1: the direction numbers are the caller's, 0: the engine's */
  uint32_t reserved[56]; /* of the host */
} vqs_digital_record;
typedef vqs_digital_record vqs_sobol_record;
typedef vqs_digital_record vqs_niederreiter_record;

#ifdef __cplusplus
static_assert(sizeof(vqs_digital_record) == 256, "the direction numbers lie at byte 256");
static_assert(sizeof(vqs_record_header) == 16, "fields start at byte 16");
static_assert(sizeof(vqs_mrg32k3a_record) == 52, "the substreams lie at byte 40");
static_assert(sizeof(vqs_mt19937_record) == 2516, "the position lies at byte 2512");
static_assert(sizeof(vqs_mt2203_record) == 308, "the twist constant lies at byte 296");
#endif

#endif
