#include "hvl/engines/nondeterministic.hpp"

#include <cpuid.h>
#include <immintrin.h>
#include <sys/random.h>

#include <cerrno>

#include "generators/entry.hpp"
#include "generators/gather.hpp"
#include "stream.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_nondeterministic_record;

struct processor_features {
  bool has_rdrand = false, has_rdseed = false;

  processor_features() noexcept {
    unsigned a, b, c, d;
    has_rdrand = __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_RDRND) != 0;
    has_rdseed = __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_RDSEED) != 0;
  }
};
const processor_features processor;

[[gnu::target("rdseed")]] bool rdseed(unsigned long long& word) noexcept {
  return _rdseed64_step(&word) != 0;
}
[[gnu::target("rdrnd")]] bool rdrand(unsigned long long& word) noexcept {
  return _rdrand64_step(&word) != 0;
}

// Intel, "Digital Random Number Generator (DRNG) Software Implementation Guide", 2.1: RDRAND is for numbers, and broken where
// it fails ten times in a row; RDSEED, tens of times slower, runs dry where many draw and may be asked again after a pause.
bool draw_from_processor(std::uint64_t& to) noexcept {
  constexpr int rdrand_attempts = 10, rdseed_attempts = 100;
  unsigned long long word;
  for (int i = 0; processor.has_rdrand && i < rdrand_attempts; ++i)
    if (rdrand(word)) {
      to = word;
      return true;
    }
  for (int i = 0; processor.has_rdseed && i < rdseed_attempts; ++i) {
    if (rdseed(word)) {
      to = word;
      return true;
    }
    _mm_pause();
  }
  return false;
}

bool gather_from_system(std::uint32_t* words, std::size_t count) noexcept {
  auto* at = reinterpret_cast<unsigned char*>(words);
  for (std::size_t left = count * sizeof *words; left != 0;) {
    const ssize_t got = ::getrandom(at, left, 0);
    if (got < 0 && errno != EINTR)
      return false;
    at += got < 0 ? 0 : got;
    left -= got < 0 ? 0 : static_cast<std::size_t>(got);
  }
  return true;
}

enum source : std::uint32_t { of_processor, of_system };

bool gather_from(std::uint32_t source, std::uint32_t* words, std::size_t count) noexcept {
  return source == of_processor ? gather(draw_from_processor, words, count)
                                : gather_from_system(words, count);
}

struct generator {
  using type = engines::nondeterministic;

  static constexpr std::uint32_t words_per_thread = 1 << 12;
  static constexpr record_field fields[] = {{16, 4, 1}};

  // The processor's generator where it is there and not stuck, otherwise the system's. Nothing follows from a seed.
  static int seed(record_type& r, std::uint64_t) {
    std::uint32_t trial[64];
    for (const std::uint32_t source : {of_processor, of_system})
      if (gather_from(source, trial, std::size(trial))) {
        r.source = source;
        return VQS_STATUS_OK;
      }
    return VQS_STATUS_SOURCE_FAILED;
  }
  static int seed_words(record_type& r, std::span<const std::uint32_t>) { return seed(r, 0); }

  static bool in_range(const record_type& r) {
    return r.source == of_system ||
           (r.source == of_processor && (processor.has_rdrand || processor.has_rdseed));
  }

  static void draw(record_type& r, std::uint32_t* out, std::size_t count) {
    if (!gather_from(r.source, out, count))
      throw failed_with{VQS_STATUS_SOURCE_FAILED};
  }

  static void advance(record_type&, std::span<const std::uint64_t>) {}
};

} // namespace

const engine nondeterministic_engine = entry<generator>();

} // namespace hvl::streams
