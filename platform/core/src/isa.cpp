// The instruction set in force.
#include <hvl/core.h>

#include <atomic>
#include <iterator>
#include <string_view>

namespace {

constexpr const char* names[] = {"scalar", "avx2", "avx512"};
constexpr int isa_count = std::size(names);
constexpr int automatic = -1;

std::atomic<int> forced{automatic};

// The compiler's run-time library also asks whether the operating system saves the wide registers.
bool has_avx2() noexcept {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi2");
}

bool has_avx512() noexcept {
  return has_avx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
         __builtin_cpu_supports("avx512vl");
}

int best() noexcept {
  int isa = isa_count - 1;
  while (!hvl_serv_isa_supported(isa))
    --isa;
  return isa;
}

int choose() noexcept {
  char wanted[16];
  if (hvl_serv_getenv("HVL_ISA", wanted, sizeof wanted) <= 0)
    return best();
  for (int isa = 0; isa != isa_count; ++isa)
    if (std::string_view(wanted) == names[isa])
      return hvl_serv_isa_supported(isa) ? isa : HVL_SERV_BAD_ISA;
  return HVL_SERV_BAD_ISA;
}

} // namespace

int hvl_serv_isa(void) {
  const int now = forced.load(std::memory_order_relaxed);
  if (now != automatic)
    return now;
  static const int chosen = choose();
  return chosen;
}

int hvl_serv_set_isa(int isa) {
  if (isa != automatic && !hvl_serv_isa_supported(isa))
    return HVL_SERV_BAD_ISA;
  forced.store(isa, std::memory_order_relaxed);
  return HVL_SERV_OK;
}

const char* hvl_serv_isa_name(int isa) {
  return isa >= 0 && isa < isa_count ? names[isa] : nullptr;
}

int hvl_serv_isa_supported(int isa) {
  switch (isa) {
  case HVL_ISA_SCALAR:
    return 1;
  case HVL_ISA_AVX2:
    return has_avx2();
  case HVL_ISA_AVX512:
    return has_avx512();
  default:
    return 0;
  }
}
