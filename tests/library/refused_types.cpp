// Does not compile: generate refuses what is none of the library's distributions and engines, each with a sentence.
#include <random>

#include <kestro/hvl/rng.hpp>

namespace rng = kestro::hvl::rng;

void refused(rng::philox4x32x10& engine, std::mt19937& another_engine, float* r) {
  rng::generate(std::normal_distribution<float>(), engine, 1, r);
  rng::generate(rng::uniform<float>(), another_engine, 1, r);
}

// A caller's own overload is not in the way.
namespace theirs {

struct law {
  using result_type = float;
};
int generate(const law&, rng::philox4x32x10&, std::int64_t, float*);

static_assert(
    std::is_same_v<decltype(generate(law(), std::declval<rng::philox4x32x10&>(), 1, std::declval<float*&>())),
                   int>,
    "the library's generate is preferred to a caller's own");

} // namespace theirs
