/* The host-side stream library: random-number streams and vector generators.
 *
 * A stream is one engine at one position of its sequence. Every function returns 0 on success or one of the
 * negative statuses below, never lets an exception escape, and on failure leaves the stream, the output and
 * any existing file as they were. One stream must not be used from two threads at once; different streams
 * may.
 *
 * The same call gives the same bits whatever the instruction set, the number of threads and the caller's
 * floating-point environment (rounding mode, flushing of subnormals), which is left as it was; and any split of
 * a request into several calls gives the same numbers. */
#ifndef HVL_STREAMS_H
#define HVL_STREAMS_H

#include <stdint.h>

#if defined(HVL_STREAMS_BUILD)
#define HVL_STREAMS_API __attribute__((visibility("default")))
#else
#define HVL_STREAMS_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef void* vqs_stream;

/* Engine identifiers. */
enum {
  VQS_ENGINE_MCG31M1 = 1048576,
  VQS_ENGINE_WICHMANN_HILL = 2097152, /* of the first of 273 members, whose identifiers follow each other */
  VQS_ENGINE_MRG32K3A = 3145728,
  VQS_ENGINE_MCG59 = 4194304,
  VQS_ENGINE_R250 = 5242880,
  VQS_ENGINE_SOBOL = 6291456,
  VQS_ENGINE_NIEDERREITER = 7340032,
  VQS_ENGINE_MT19937 = 8388608,
  VQS_ENGINE_SFMT19937 = 9437184,
  VQS_ENGINE_MT2203 = 10485760, /* of the first of 6024 members */
  VQS_ENGINE_NONDETERMINISTIC = 15728640,
  VQS_ENGINE_PHILOX4X32X10 = 16777216,
  VQS_ENGINE_ARS5 = 33554432
};

enum {
  VQS_STATUS_OK = 0,
  VQS_STATUS_NULL_POINTER = -1,         /* a required pointer is null */
  VQS_STATUS_BAD_STREAM = -2,           /* the handle is not a live stream */
  VQS_STATUS_BAD_METHOD = -3,           /* the distribution has no such method */
  VQS_STATUS_UNKNOWN_ENGINE = -4,       /* no engine has this identifier */
  VQS_STATUS_BAD_COUNT = -5,            /* n or a word count is negative, or too large */
  VQS_STATUS_BAD_PARAMETER = -6,        /* a parameter or seed is out of range or NaN, or stride is 0 */
  VQS_STATUS_UNSUPPORTED_PAIR = -7,     /* this engine does not serve this distribution */
  VQS_STATUS_SKIP_UNSUPPORTED = -8,     /* this engine cannot skip ahead */
  VQS_STATUS_LEAPFROG_UNSUPPORTED = -9, /* this engine cannot leapfrog */
  VQS_STATUS_FILE_OPEN = -10,           /* the file cannot be opened or created */
  VQS_STATUS_FILE_WRITE = -11,          /* writing failed; an existing file keeps its content */
  VQS_STATUS_FILE_READ = -12,           /* reading failed */
  VQS_STATUS_STATE_FORMAT = -13,        /* not a saved state, or one of an unknown version or engine */
  VQS_STATUS_STATE_SIZE = -14,          /* a saved state that is too short or too long */
  VQS_STATUS_STATE_CHECKSUM = -15,      /* a saved state whose checksum does not match */
  VQS_STATUS_STATE_RANGE = -16,         /* a saved state with a field out of its range */
  VQS_STATUS_NO_MEMORY = -17,           /* out of memory */
  VQS_STATUS_BAD_ISA = -18,         /* HVL_ISA names an instruction set that is unknown or not available */
  VQS_STATUS_INTERNAL = -19,        /* an unexpected failure inside the library */
  VQS_STATUS_FILE_MISSING = -20,    /* there is no such file, or no folder for it */
  VQS_STATUS_FILE_PERMISSION = -21, /* no permission to read or write the file */
  VQS_STATUS_SOURCE_FAILED = -22    /* the source of nondeterministic words fails or is stuck */
};

/* Method codes. Where a distribution has an accurate method, its code is that of the plain one, 0 when there is no
 * choice, with VQS_METHOD_ACCURATE added. */
enum { VQS_METHOD_ACCURATE = 1073741824 };
enum { VQS_METHOD_UNIFORM_STANDARD = 0, VQS_METHOD_UNIFORM_ACCURATE = VQS_METHOD_ACCURATE };
enum {
  VQS_METHOD_GAUSSIAN_BOX_MULLER = 0,
  VQS_METHOD_GAUSSIAN_BOX_MULLER2 = 1,
  VQS_METHOD_GAUSSIAN_ICDF = 2
};
enum { VQS_METHOD_LOGNORMAL_BOX_MULLER2 = 0, VQS_METHOD_LOGNORMAL_ICDF = 1 };

/* A constant text for a status; "unknown status" for a number that is none. */
HVL_STREAMS_API const char* vqsStatusText(int status);

/* The engine identifier of a stream, or a negative status. */
HVL_STREAMS_API int32_t vqsEngineOfStream(vqs_stream stream);

/* Creates a stream from one seed, or from `count` seed words; count 0 (words may then be null) is the
 * engine's state without any word. For mrg32k3a, mcg31m1 and mcg59 the words are the state itself, reduced by the
 * moduli: x0 x1 x2 y0 y1 y2, or the low and the high word of x; one seed is spread over their state by SplitMix64.
 * Of sobol and niederreiter one seed is the number of dimensions, from 1 to 21201 and 4720; of words it is the first, and
 * what the caller has of his own may follow: 32 direction numbers for each dimension, or for niederreiter an irreducible
 * polynomial for each, all different, the coefficient of x^i at bit i. All else is VQS_STATUS_BAD_PARAMETER.
 * Of nondeterministic nothing follows from seeds or words, nor do copies and loaded states repeat anything: a stream is its
 * source, the processor's RDSEED or RDRAND or, where it has neither or they are stuck, the system's getrandom. */
HVL_STREAMS_API int vqsNewStream_64(vqs_stream* stream, int32_t engine, uint64_t seed);
HVL_STREAMS_API int vqsNewStreamEx_64(vqs_stream* stream, int32_t engine, int64_t count,
                                      const uint32_t* words);

HVL_STREAMS_API int vqsCopyStream_64(vqs_stream* out, vqs_stream in);

/* Releases the stream and sets the handle to null. */
HVL_STREAMS_API int vqsDeleteStream_64(vqs_stream* stream);

/* Advances the stream by n outputs; the Ex form by words[0] + words[1] * 2^64 + words[2] * 2^128 + ... */
HVL_STREAMS_API int vqsSkipAheadStream_64(vqs_stream stream, uint64_t n);
HVL_STREAMS_API int vqsSkipAheadStreamEx_64(vqs_stream stream, int64_t count, const uint64_t* words);

/* Afterwards the stream yields elements idx, idx + stride, idx + 2 stride, ... of its sequence. */
HVL_STREAMS_API int vqsLeapfrogStream_64(vqs_stream stream, uint64_t idx, uint64_t stride);

/* Bytes that a saved state takes, or a negative status. */
HVL_STREAMS_API int64_t vqsGetStreamSize_64(vqs_stream stream);

/* Saving: `memory` has room for vqsGetStreamSize_64 bytes. A file is written whole or not at all: under
 * another name in the same folder, brought to the disk, then renamed. Symbolic links are followed. Where the folder
 * takes no new file, an existing file is overwritten, and gets its content back when that fails. */
HVL_STREAMS_API int vqsSaveStreamM_64(vqs_stream stream, unsigned char* memory);
HVL_STREAMS_API int vqsSaveStreamF_64(vqs_stream stream, const char* file_name);

/* Loading: builds a new stream, or nothing. `memory` must hold a complete saved state; its header is checked
 * before anything behind it is read. */
HVL_STREAMS_API int vqsLoadStreamM_64(vqs_stream* stream, const unsigned char* memory);
HVL_STREAMS_API int vqsLoadStreamF_64(vqs_stream* stream, const char* file_name);

/* Uniform on [a, b), a < b; reals finite, b - a and a + b too. One engine word makes one value. The accurate method
 * clamps real values into [a, b]; for integers, which always are in [a, b - 1], it computes in double instead of
 * float, and so has no steps beyond 2^24. */
HVL_STREAMS_API int vsRngUniform_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float b);
HVL_STREAMS_API int vdRngUniform_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                    double b);
HVL_STREAMS_API int viRngUniform_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, int32_t a,
                                    int32_t b);
HVL_STREAMS_API int viRngUniformU_64(int64_t method, vqs_stream stream, int64_t n, uint32_t* r, uint32_t a,
                                     uint32_t b);

/* The engine's raw output: the 32-bit word, of a quasi-random engine a coordinate in units of 2^-32, point after point;
 * mcg31m1 and mrg32k3a their value, mcg59 its high 32 of 59 bits. Method 0. */
HVL_STREAMS_API int viRngUniformBits_64(int64_t method, vqs_stream stream, int64_t n, uint32_t* r);

/* Uniformly distributed bits, for the engines that have them: philox4x32x10, ars5, mt19937, sfmt19937 and mcg59. A
 * 64-bit value is made of two consecutive 32-bit ones, the first one low. Method 0. */
HVL_STREAMS_API int viRngUniformBits32_64(int64_t method, vqs_stream stream, int64_t n, uint32_t* r);
HVL_STREAMS_API int viRngUniformBits64_64(int64_t method, vqs_stream stream, int64_t n, uint64_t* r);

/* The continuous distributions. Deviations, scales and shapes are positive, all parameters finite. Words consumed are
 * one per value; two per value by box_muller and laplace; by box_muller2 two per pair of values, so a call for an odd
 * number of values consumes one word more than it has values. */

/* Normal with mean a and deviation sigma. */
HVL_STREAMS_API int vsRngGaussian_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a,
                                     float sigma);
HVL_STREAMS_API int vdRngGaussian_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                     double sigma);

/* beta exp(z) + b, z normal with mean a and deviation sigma. Accurate methods: no value below b. */
HVL_STREAMS_API int vsRngLognormal_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a,
                                      float sigma, float b, float beta);
HVL_STREAMS_API int vdRngLognormal_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                      double sigma, double b, double beta);

/* a - beta ln u. Accurate method: no value below a. */
HVL_STREAMS_API int vsRngExponential_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a,
                                        float beta);
HVL_STREAMS_API int vdRngExponential_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                        double beta);

/* a - b ln u1 or, for u2 above 1/2, a + b ln u1. Method 0. */
HVL_STREAMS_API int vsRngLaplace_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float b);
HVL_STREAMS_API int vdRngLaplace_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                    double b);

/* a + beta (-ln u)^(1/alpha). Accurate method: no value below a. */
HVL_STREAMS_API int vsRngWeibull_64(int64_t method, vqs_stream stream, int64_t n, float* r, float alpha,
                                    float a, float beta);
HVL_STREAMS_API int vdRngWeibull_64(int64_t method, vqs_stream stream, int64_t n, double* r, double alpha,
                                    double a, double beta);

/* Marsaglia and Tsang's rejection: shape alpha, displacement a, scale beta. Two words a value, three at shapes below 1;
 * doubles are made in pairs. Accurate method: no value below a. */
HVL_STREAMS_API int vsRngGamma_64(int64_t method, vqs_stream stream, int64_t n, float* r, float alpha,
                                  float a, float beta);
HVL_STREAMS_API int vdRngGamma_64(int64_t method, vqs_stream stream, int64_t n, double* r, double alpha,
                                  double a, double beta);

/* Gamma of shape v / 2 and scale 2: v > 0 degrees of freedom. Method 0. */
HVL_STREAMS_API int vsRngChiSquare_64(int64_t method, vqs_stream stream, int64_t n, float* r, int32_t v);
HVL_STREAMS_API int vdRngChiSquare_64(int64_t method, vqs_stream stream, int64_t n, double* r, int32_t v);

/* a + beta X, X by Cheng's and Joehnk's rejection: shapes p and q, a + beta finite. Two words a value, made in double for
 * both result types. Method 0. */
HVL_STREAMS_API int vsRngBeta_64(int64_t method, vqs_stream stream, int64_t n, float* r, float p, float q,
                                 float a, float beta);
HVL_STREAMS_API int vdRngBeta_64(int64_t method, vqs_stream stream, int64_t n, double* r, double p, double q,
                                 double a, double beta);

/* Vectors of dimension dimen, n of them: a + T z, z independent standard normal numbers by box_muller2, so n dimen words,
 * one more where that is odd. mstorage: T is the lower triangle of dimen rows of dimen elements, or its rows one after the
 * other, or its diagonal, all else 0. Method 0. */
enum { VQS_MATRIX_FULL = 0, VQS_MATRIX_PACKED = 1, VQS_MATRIX_DIAGONAL = 2 };
HVL_STREAMS_API int vsRngGaussianMV_64(int64_t method, vqs_stream stream, int64_t n, float* r, int32_t dimen,
                                       int32_t mstorage, const float* a, const float* t);
HVL_STREAMS_API int vdRngGaussianMV_64(int64_t method, vqs_stream stream, int64_t n, double* r, int32_t dimen,
                                       int32_t mstorage, const double* a, const double* t);

/* Failures before the first success of probability p, by inversion; saturated at 2^31 - 1. Two words a value. */
HVL_STREAMS_API int viRngGeometric_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double p);

/* The discrete distributions. Method 0; two words a value, unless said otherwise. Values that would exceed 2^31 - 1 are 2^31 - 1. */

/* 1 with probability p in [0, 1], else 0. */
HVL_STREAMS_API int viRngBernoulli_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double p);

/* Poisson with mean lambda, at least 0. By inversion up to 2^20, beyond by Hoermann's rejection PTRS. */
HVL_STREAMS_API int viRngPoisson_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double lambda);

/* Poisson, value i with mean lambda[i], at least 0. */
HVL_STREAMS_API int viRngPoissonV_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r,
                                     const double* lambda);

/* Successes of ntrial trials, each with probability p in [0, 1]. By inversion up to a variance of 2^20, beyond by
 * Hoermann's rejection BTRS. */
HVL_STREAMS_API int viRngBinomial_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, int32_t ntrial,
                                     double p);

/* Vectors of k numbers, n of them: how many of ntrial trials have each of k outcomes, whose probabilities p add up to 1. One
 * outcome after the other a binomial number of the trials that are left, by inversion at means below 16, beyond by Hoermann's
 * rejection BTRS. n k words. */
HVL_STREAMS_API int viRngMultinomial_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r,
                                        int32_t ntrial, int32_t k, const double* p);

/* Marked ones in a sample of s from a lot of l that holds m marked, s and m in [0, l]. By inversion up to a variance of
 * 2^20, beyond by rejection. */
HVL_STREAMS_API int viRngHypergeometric_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r,
                                           int32_t l, int32_t s, int32_t m);

/* Failures before success number a, a positive real number, each trial a success with probability p in (0, 1]. By inversion
 * where p is at least 2^-8 and the variance at most 2^20, beyond as Poisson with a gamma distributed mean, of six words a
 * value. */
HVL_STREAMS_API int viRngNegbinomial_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double a,
                                        double p);

/* a + beta sqrt(-ln u). Accurate method: no value below a. */
HVL_STREAMS_API int vsRngRayleigh_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a,
                                     float beta);
HVL_STREAMS_API int vdRngRayleigh_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                     double beta);

/* a + beta ln(-ln u). Method 0. */
HVL_STREAMS_API int vsRngGumbel_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a,
                                   float beta);
HVL_STREAMS_API int vdRngGumbel_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                   double beta);

/* a + b tan(pi (u - 1/2)), in double for both result types. Method 0. */
HVL_STREAMS_API int vsRngCauchy_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float b);
HVL_STREAMS_API int vdRngCauchy_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a,
                                   double b);

#ifdef __cplusplus
}
#endif

#endif
