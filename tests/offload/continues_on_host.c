/* A C program offloads, waits for the completion, goes on generating on the host, and compares with a program that never
   left the host: for every distribution, engine, spelling and integer model. The argument picks the path. */
#include <hvl/omp_interop.h>
#include <hvl/streams.h>
#include <kestro/hvl/offload.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "native_objects.h"

#define UNWRAP(...) __VA_ARGS__

static const float fa = -2.5f, fb = 7.25f, fone = 1.5f, ftwo = 0.75f;
static const double da = -2.5, db = 1e6, done = 1.5, dtwo = 0.75, p = 0.03;
static const int32_t ia = -100, ib = 1000, il = 2147483647, is = 1000000000, im = 99999999, degrees = 3,
                     dimension = 3, packed = VQS_MATRIX_PACKED;
static const float fmean[] = {1, 2, 3}, fmatrix[] = {1, 0.5f, 2, -1, 0.25f, 3};
static const double outcomes[] = {0.3, 0, 0.7};
static const double dmean[] = {1, 2, 3}, dmatrix[] = {1, 0.5, 2, -1, 0.25, 3};

enum { longest = 70001, tail = 33, guard = 16 };
static double means[longest]; /* of poisson_v */

/* The real distributions with a location, a second one above it, and two positive numbers. */
#define REAL_CASES(CASE, tag, T, a, b, one, two)                                                             \
  CASE(tag, Cauchy, cauchy, T, (, a, one), (, &a, &one))                                                     \
  CASE(tag, Exponential, exponential, T, (, a, one), (, &a, &one))                                           \
  CASE(tag, Gaussian, gaussian, T, (, a, one), (, &a, &one))                                                 \
  CASE(tag, Gumbel, gumbel, T, (, a, one), (, &a, &one))                                                     \
  CASE(tag, Laplace, laplace, T, (, a, one), (, &a, &one))                                                   \
  CASE(tag, Lognormal, lognormal, T, (, a, one, b, two), (, &a, &one, &b, &two))                             \
  CASE(tag, Rayleigh, rayleigh, T, (, a, one), (, &a, &one))                                                 \
  CASE(tag, Uniform, uniform, T, (, a, b), (, &a, &b))                                                       \
  CASE(tag, Weibull, weibull, T, (, two, a, one), (, &two, &a, &one))

/* Gamma below shape 1 in float, above in double. CASE(precision tag, Name, name, result type, parameters, parameters by address) */
#define CASES(CASE)                                                                                          \
  REAL_CASES(CASE, vs, float, fa, fb, fone, ftwo)                                                            \
  REAL_CASES(CASE, vd, double, da, db, done, dtwo)                                                           \
  CASE(vs, Gamma, gamma, float, (, ftwo, fa, fone), (, &ftwo, &fa, &fone))                                   \
  CASE(vd, Gamma, gamma, double, (, done, da, dtwo), (, &done, &da, &dtwo))                                  \
  CASE(vs, Beta, beta, float, (, ftwo, fone, fa, fb), (, &ftwo, &fone, &fa, &fb))                            \
  CASE(vd, Beta, beta, double, (, dtwo, done, da, db), (, &dtwo, &done, &da, &db))                           \
  CASE(vs, GaussianMV, gaussianmv, float, (, dimension, packed, fmean, fmatrix),                             \
       (, &dimension, &packed, fmean, fmatrix))                                                              \
  CASE(vd, GaussianMV, gaussianmv, double, (, dimension, packed, dmean, dmatrix),                            \
       (, &dimension, &packed, dmean, dmatrix))                                                              \
  CASE(vs, ChiSquare, chisquare, float, (, degrees), (, &degrees))                                           \
  CASE(vd, ChiSquare, chisquare, double, (, degrees), (, &degrees))                                          \
  CASE(vi, Geometric, geometric, int32_t, (, p), (, &p))                                                     \
  CASE(vi, Bernoulli, bernoulli, int32_t, (, p), (, &p))                                                     \
  CASE(vi, Poisson, poisson, int32_t, (, db), (, &db))                                                       \
  CASE(vi, Binomial, binomial, int32_t, (, ib, p), (, &ib, &p))                                              \
  CASE(vi, Hypergeometric, hypergeometric, int32_t, (, il, is, im), (, &il, &is, &im))                       \
  CASE(vi, Negbinomial, negbinomial, int32_t, (, done, p), (, &done, &p))                                    \
  CASE(vi, Multinomial, multinomial, int32_t, (, ib, dimension, outcomes), (, &ib, &dimension, outcomes))    \
  CASE(vi, PoissonV, poissonv, int32_t, (, means), (, means))                                                \
  CASE(vi, Uniform, uniform, int32_t, (, ia, ib), (, &ia, &ib))                                              \
  CASE(vi, UniformBits, uniformbits, uint32_t, (), ())                                                       \
  CASE(vi, UniformBits32, uniformbits32, uint32_t, (), ())                                                   \
  CASE(vi, UniformBits64, uniformbits64, uint64_t, (), ())

#define DEFINE(tag, Name, name, result, values, addresses)                                                   \
  static int tag##Name##_host(void* stream, int64_t n, void* r, void* interop) {                             \
    (void)interop;                                                                                           \
    return tag##Rng##Name##_64(0, stream, n, (result*)r UNWRAP values);                                      \
  }                                                                                                          \
  static int tag##Name##_ilp64(void* stream, int64_t n, void* r, void* interop) {                            \
    return hvl_vqs_##tag##Rng##Name##_omp_offload_ilp64(0, stream, n, (result*)r UNWRAP values, interop);    \
  }                                                                                                          \
  static int tag##Name##_lp64(void* stream, int64_t n, void* r, void* interop) {                             \
    return hvl_vqs_##tag##Rng##Name##_omp_offload_lp64(0, stream, (int32_t)n, (result*)r UNWRAP values,      \
                                                       interop);                                             \
  }                                                                                                          \
  static int tag##Name##_lower(void* stream, int64_t n, void* r, void* interop) {                            \
    const int64_t method = 0;                                                                                \
    return hvl_vqs_##tag##rng##name##_omp_offload(&method, &stream, &n, (result*)r UNWRAP addresses,         \
                                                  interop);                                                  \
  }                                                                                                          \
  static int tag##Name##_lower_lp64(void* stream, int64_t n, void* r, void* interop) {                       \
    const int32_t method = 0, count = (int32_t)n;                                                            \
    return hvl_vqs_##tag##rng##name##_omp_offload_lp64(&method, &stream, &count,                             \
                                                       (result*)r UNWRAP addresses, interop);                \
  }
CASES(DEFINE)

typedef int generate(void* stream, int64_t n, void* r, void* interop);

static const struct {
  const char* name;
  size_t value_bytes;
  generate* host;
  generate* offload[4];
} cases[] = {
#define ENTRY(tag, Name, name, result, values, addresses)                                                    \
  {#tag #Name,                                                                                               \
   sizeof(result),                                                                                           \
   tag##Name##_host,                                                                                         \
   {tag##Name##_ilp64, tag##Name##_lp64, tag##Name##_lower, tag##Name##_lower_lp64}},
    CASES(ENTRY)};

static const int32_t engines[] = {VQS_ENGINE_PHILOX4X32X10, VQS_ENGINE_MRG32K3A,
                                  VQS_ENGINE_MCG31M1,       VQS_ENGINE_MCG59,
                                  VQS_ENGINE_MT19937,       VQS_ENGINE_ARS5,
                                  VQS_ENGINE_WICHMANN_HILL, VQS_ENGINE_WICHMANN_HILL + 272,
                                  VQS_ENGINE_SOBOL,         VQS_ENGINE_NIEDERREITER};

/* The offloaded piece and, behind it, the one that the host makes; each odd, so that neither ends with a block. */
static const int64_t lengths[] = {0, 1, 5, 1001, 70001};
static unsigned char expected[(longest + tail) * 24], got[(longest + tail) * 24 + guard];
static int faults = 0;

#define EXPECT(condition, ...)                                                                               \
  do {                                                                                                       \
    if (!(condition)) {                                                                                      \
      printf("%s: ", #condition);                                                                            \
      printf(__VA_ARGS__);                                                                                   \
      ++faults;                                                                                              \
    }                                                                                                        \
  } while (0)

static void check(size_t c, int spelling, int32_t engine, int64_t n, hvl_omp_interop interop) {
  void *reference = NULL, *stream = NULL;
  if (n == 0 && strcmp(cases[c].name, "viPoissonV") == 0) /* ends the process */
    return;
  const int is_of_vectors =
      strcmp(cases[c].name + 2, "GaussianMV") == 0 || strcmp(cases[c].name, "viMultinomial") == 0;
  const size_t values = is_of_vectors ? (size_t)dimension : 1; /* of one in n */
  const size_t bytes = values * cases[c].value_bytes * (size_t)n,
               tail_bytes = values * cases[c].value_bytes * tail;
  EXPECT(vqsNewStream_64(&reference, engine, 77) == 0 && vqsNewStream_64(&stream, engine, 77) == 0, "\n");
  /* not at the start of a block */
  EXPECT(vqsSkipAheadStream_64(reference, 3) == 0 && vqsSkipAheadStream_64(stream, 3) == 0, "\n");
  memset(got, 0xA5, sizeof got);
  const int host = cases[c].host(reference, n, expected, NULL);
  const int64_t completions = hvl_omp_interop_completions(interop);
  const int status = cases[c].offload[spelling](stream, n, got, interop);
  if (host == VQS_STATUS_UNSUPPORTED_PAIR) {
    EXPECT(status == -2, "%s, engine %d: %d\n", cases[c].name, engine, status);
    EXPECT(got[0] == 0xA5, "%s wrote\n", cases[c].name);
  } else {
    EXPECT(status == 0 && host == 0, "%s, engine %d: %d, on the host %d\n", cases[c].name, engine, status,
           host);
    EXPECT(hvl_omp_interop_wait(interop, completions + 1, 60000) == 0, "%s: no completion\n", cases[c].name);
    EXPECT(memcmp(got, expected, bytes) == 0, "%s, engine %d, n %lld, spelling %d\n", cases[c].name, engine,
           (long long)n, spelling);
    for (int k = 0; k < guard; ++k)
      EXPECT(got[bytes + (size_t)k] == 0xA5, "%s wrote behind its end\n", cases[c].name);
    EXPECT(cases[c].host(reference, tail, expected, NULL) == 0 && cases[c].host(stream, tail, got, NULL) == 0,
           "\n");
    EXPECT(memcmp(got, expected, tail_bytes) == 0, "%s, engine %d: the stream stands elsewhere after %lld\n",
           cases[c].name, engine, (long long)n);
  }
  EXPECT(vqsDeleteStream_64(&reference) == 0 && vqsDeleteStream_64(&stream) == 0, "\n");
}

int main(int argc, char** argv) {
  for (int i = 0; i < longest; ++i)
    means[i] = i % 20 * 1.7;
  native_objects objects;
  const char* path = argc > 1 ? argv[1] : "opencl";
  const int in_order = argc < 3 || strcmp(argv[2], "out_of_order") != 0;
  if (strcmp(path, "opencl") == 0 ? make_opencl_objects(&objects, in_order)
                                  : make_zerlin_objects(&objects, in_order)) {
    printf("no native objects for %s\n", path);
    return 2;
  }
  if (strcmp(path, "sycl") == 0)
    objects.foreign_runtime = HVL_OMP_FR_SYCL;
  hvl_omp_interop interop = make_interop(&objects);
  for (size_t c = 0; c < sizeof cases / sizeof *cases; ++c)
    for (size_t e = 0; e < sizeof engines / sizeof *engines; ++e)
      for (size_t l = 0; l < sizeof lengths / sizeof *lengths; ++l)
        for (int spelling = 0; spelling < 4; ++spelling)
          check(c, spelling, engines[e], lengths[l], interop);
  EXPECT(hvl_omp_interop_destroy(&interop) == 0, "\n");
  release_objects(&objects);
  printf("%d faults\n", faults);
  return faults != 0;
}
