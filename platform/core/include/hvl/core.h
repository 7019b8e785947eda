/* Core service: what every library of the product shares - tracing switch, printing, environment, locks,
   memory, clean-up at unload, and the choice of instruction set. C11 and C++; every function may be called
   from any thread unless it says otherwise, and none throws. */
#ifndef HVL_CORE_H
#define HVL_CORE_H

#include <pthread.h>
#include <stddef.h>
#include <stdio.h>

#define HVL_CORE_API __attribute__((visibility("default")))
#define HVL_CORE_PRINTF(format_index) __attribute__((format(printf, format_index, format_index + 1)))

#ifdef __cplusplus
extern "C" {
#endif

enum hvl_serv_status {
  HVL_SERV_OK = 0,
  HVL_SERV_BAD_ISA = -1,      /* an instruction set that is unknown, or that this CPU lacks */
  HVL_SERV_BAD_ARGUMENT = -2, /* a null pointer, a number out of range, a text too long */
  HVL_SERV_IO_ERROR = -3      /* the operating system refused to write */
};

/* ---- Tracing switch
   ---------------------------------------------------------------------------------------- The environment
   sets it when the library is loaded: HVL_VERBOSE = 0, 1 or 2 (anything else warns and leaves 0),
   HVL_VERBOSE_OUTPUT_FILE = a file name. */

/* The tracing mode: 0 off, positive one line per call, 2 also times. The pointer is valid for the whole
   process and may be written through; several threads then use atomic accesses. */
HVL_CORE_API int* hvl_serv_verbose_mode(void);

/* Sets the mode. Returns the mode before, or HVL_SERV_BAD_ARGUMENT for a mode other than 0, 1, 2. */
HVL_CORE_API int hvl_serv_set_verbose(int mode);

/* The name of the trace file; empty means standard output. The text is never changed or freed: setting
   another name makes later calls return another pointer. */
HVL_CORE_API char* hvl_serv_verbose_output_file_mode(void);

/* Sets the name of the trace file; null or "" means standard output. HVL_SERV_BAD_ARGUMENT when there is no
   memory for the name. */
HVL_CORE_API int hvl_serv_set_verbose_output_file(const char* name);

/* The first call of the process writes one line to the trace output: product, version, instruction set and
   the interface tag of that call. Every later call does nothing. */
HVL_CORE_API void hvl_serv_print_verbose_header(int iface);

/* Seconds of a steady wall clock, from an arbitrary origin. */
HVL_CORE_API double hvl_serv_dsecnd(void);

/* ---- Files and printing
   ------------------------------------------------------------------------------------ A formatted text is
   written whole, by one write(2) past the stream's buffer (which is flushed first): texts of several threads
   never interleave, and those of several processes appending to one file stay whole. Do not mix these calls
   with seeking on the same stream. Numbers are formatted as in the C locale, whatever the program's. */

/* As fopen, and the descriptor is not inherited by child programs. */
HVL_CORE_API FILE* hvl_serv_fopen(const char* name, const char* mode);

/* As fclose; null is HVL_SERV_BAD_ARGUMENT. */
HVL_CORE_API int hvl_serv_fclose(FILE* file);

/* Returns the bytes written, or a negative status. */
HVL_CORE_API int hvl_serv_fprintf_s(FILE* file, const char* format, ...) HVL_CORE_PRINTF(2);

enum hvl_serv_print_kind {
  HVL_SERV_PRINT_PLAIN = 0,  /* to standard output */
  HVL_SERV_PRINT_WARNING = 1 /* to standard error */
};

/* Prints a text. Returns the bytes written, or a negative status. */
HVL_CORE_API int hvl_serv_print_text(int kind, const char* format, ...) HVL_CORE_PRINTF(2);

enum hvl_serv_message {
  HVL_SERV_MESSAGE_NO_SYMBOL = 3,            /* argument: const char*, the symbol's name */
  HVL_SERV_MESSAGE_TOO_MANY_CLEANUPS = 1449, /* no argument */
  /* printed with the number when the catalogue has no such message; the result is HVL_SERV_BAD_ARGUMENT */
  HVL_SERV_MESSAGE_UNKNOWN = 0
};

/* Prints message `message_number` of the catalogue with its arguments, as hvl_serv_print_text does. */
HVL_CORE_API int hvl_serv_print(int kind, int message_number, ...);

/* Appends to a bounded text: writes at *cursor, advances *cursor and lowers *room. *room counts characters
   without the terminating NUL, so the buffer has *room + 1 bytes at *cursor. Longer text is cut. Returns the
   characters appended, or a negative status with nothing changed. */
HVL_CORE_API int hvl_serv_sprintf_char_s(char** cursor, size_t* room, const char* format, ...)
    HVL_CORE_PRINTF(3);

/* Copies an environment variable, cut to the buffer and always terminated. Returns the length of the whole
   value, or -1 if the variable is not set (the buffer then holds ""). */
HVL_CORE_API int hvl_serv_getenv(const char* name, char* buffer, size_t buffer_bytes);

/* ---- Locks
   ------------------------------------------------------------------------------------------------- static
   hvl_serv_lock_t lock = HVL_SERV_LOCK_INIT; not recursive; needs no destruction. */

typedef struct hvl_serv_lock_s {
  pthread_mutex_t mutex;
} hvl_serv_lock_t;

#define HVL_SERV_LOCK_INIT                                                                                   \
  { PTHREAD_MUTEX_INITIALIZER }

HVL_CORE_API void hvl_serv_lock(hvl_serv_lock_t* lock);
HVL_CORE_API void hvl_serv_unlock(hvl_serv_lock_t* lock);

/* ---- Memory
 * ------------------------------------------------------------------------------------------------*/

/* `bytes` bytes aligned to `alignment`, a power of two (0 means 64); null when the alignment is no power of
   two or there is no memory. Zero bytes give a pointer that can be freed. */
HVL_CORE_API void* hvl_serv_malloc(size_t bytes, size_t alignment);

/* Frees what hvl_serv_malloc gave; null does nothing. */
HVL_CORE_API void hvl_serv_free(void* memory);

/* ---- Clean-up
 * ----------------------------------------------------------------------------------------------*/

/* Has `function` called once when this library is unloaded or the process exits, later registrations first.
   A function that is registered already is not registered again. */
HVL_CORE_API void hvl_serv_core_register_sycl_destructor(void (*function)(void));

/* Takes the registration back: a library that may be unloaded before this one calls it from its own clean-up,
   so that no function of an unloaded library is called. Unknown functions are ignored. */
HVL_CORE_API void hvl_serv_core_unregister_sycl_destructor(void (*function)(void));

/* ---- Instruction set
 * ---------------------------------------------------------------------------------------*/

enum hvl_serv_isa {
  HVL_ISA_SCALAR = 0, /* the x86-64-v2 baseline */
  HVL_ISA_AVX2 = 1,   /* AVX2, FMA, BMI2 */
  HVL_ISA_AVX512 = 2  /* AVX-512 F, BW, CD, DQ, VL, and all of the above */
};

/* The instruction set in force: the one set at run time, or else the one that the environment variable
   HVL_ISA (scalar, avx2, avx512; read once) names, or else the best of this CPU. HVL_SERV_BAD_ISA while
   HVL_ISA names an unknown set or one that this CPU lacks. */
HVL_CORE_API int hvl_serv_isa(void);

/* Sets it at run time for the whole process; -1 goes back to HVL_ISA or the best. HVL_SERV_BAD_ISA, with
   nothing changed, for an unknown set or one that this CPU lacks. */
HVL_CORE_API int hvl_serv_set_isa(int isa);

/* "scalar", "avx2", "avx512"; null for any other number. */
HVL_CORE_API const char* hvl_serv_isa_name(int isa);

/* 1 if this CPU has the set, else 0. */
HVL_CORE_API int hvl_serv_isa_supported(int isa);

#ifdef __cplusplus
}
#endif

#endif
