// What a user would otherwise take, compiled for this machine's processor.
#include <Random123/ars.h>
#include <Random123/philox.h>
#include <dSFMT.h>
#include <gsl/gsl_rng.h>

#include <array>
#include <bit>
#include <boost/random/mersenne_twister.hpp>
#include <boost/random/niederreiter_base2.hpp>
#include <boost/random/sobol.hpp>
#include <memory>
#include <random>
#include <vector>

#include "sizes.hpp"

namespace bench {
namespace {

template <class Engine>
struct from_engine {
  Engine engine{20211113u};

  void operator()(std::span<std::uint32_t> out) {
    for (std::uint32_t& word : out)
      word = static_cast<std::uint32_t>(engine());
  }
  void operator()(std::span<float> out) {
    for (float& value : out)
      value = static_cast<float>(static_cast<std::int32_t>(engine())) * 0x1p-32f + 0.5f;
  }
  void operator()(std::span<double> out) {
    for (double& value : out)
      value = static_cast<double>(static_cast<std::int32_t>(engine())) * 0x1p-32 + 0.5;
  }
};

// Cipher of Random123: blocks of four words under a key whose first word is a seed.
template <class Cipher>
struct random123 {
  std::uint64_t block = 0;

  template <class T, class Convert>
  void blocks(std::span<T> out, const Convert& convert) {
    const Cipher cipher;
    const typename Cipher::key_type key = {{20211113u}};
    for (std::size_t i = 0; i + 4 <= out.size(); i += 4, ++block) {
      const typename Cipher::ctr_type words =
          cipher({{static_cast<std::uint32_t>(block), static_cast<std::uint32_t>(block >> 32), 0u, 0u}}, key);
      for (std::size_t w = 0; w < 4; ++w)
        out[i + w] = convert(words[w]);
    }
  }
  void operator()(std::span<std::uint32_t> out) {
    blocks(out, [](std::uint32_t word) { return word; });
  }
  void operator()(std::span<float> out) {
    blocks(out, [](std::uint32_t word) {
      return static_cast<float>(static_cast<std::int32_t>(word)) * 0x1p-32f + 0.5f;
    });
  }
};

// The recurrence as its definition reads, in 64-bit integers; several times as fast as the author's version in floating
// point, whose truncations g++ does not vectorise.
struct textbook_mrg32k3a {
  std::uint64_t x0 = 12345, x1 = 12345, x2 = 12345, y0 = 12345, y1 = 12345, y2 = 12345;

  std::uint32_t operator()() {
    constexpr std::uint64_t m1 = 4294967087;
    constexpr std::uint64_t m2 = 4294944443;
    const std::uint64_t x = (1403580 * x1 + 810728 * (m1 - x0)) % m1;
    const std::uint64_t y = (527612 * y2 + 1370589 * (m2 - y0)) % m2;
    x0 = x1;
    x1 = x2;
    x2 = x;
    y0 = y1;
    y1 = y2;
    y2 = y;
    return static_cast<std::uint32_t>(x > y ? x - y : x + m1 - y);
  }
  void operator()(std::span<std::uint32_t> out) {
    for (std::uint32_t& word : out)
      word = (*this)();
  }
  void operator()(std::span<float> out) {
    for (float& value : out)
      value = static_cast<float>((*this)()) * 2.328306549295728e-10f;
  }
  void operator()(std::span<double> out) {
    for (double& value : out)
      value = (*this)() * 2.328306549295728e-10;
  }
};

// The first member as its definition reads, with moduli and multipliers that the compiler knows.
struct textbook_wichmann_hill {
  std::uint32_t x1 = 12345, x2 = 12345, x3 = 12345, x4 = 12345;

  double operator()() {
    x1 = 112 * x1 % 16769407;
    x2 = 118 * x2 % 16769411;
    x3 = 113 * x3 % 16735379;
    x4 = 122 * x4 % 16772783;
    const double sum = x1 / 16769407.0 + x2 / 16769411.0 + x3 / 16735379.0 + x4 / 16772783.0;
    return sum - static_cast<double>(static_cast<std::int32_t>(sum));
  }
  void operator()(std::span<std::uint32_t> out) {
    for (std::uint32_t& word : out)
      word = static_cast<std::uint32_t>((*this)() * 0x1p32);
  }
  void operator()(std::span<float> out) {
    for (float& value : out)
      value = static_cast<float>((*this)());
  }
  void operator()(std::span<double> out) {
    for (double& value : out)
      value = (*this)();
  }
};

// As its definition reads, over a ring.
struct textbook_r250 {
  std::array<std::uint32_t, 250> words;
  std::size_t oldest = 0;

  textbook_r250() {
    std::mt19937 random;
    for (std::uint32_t& word : words)
      word = static_cast<std::uint32_t>(random());
  }
  std::uint32_t operator()() {
    const std::size_t lagging = oldest < 103 ? oldest + 147 : oldest - 103;
    const std::uint32_t word = words[oldest] ^= words[lagging];
    oldest = oldest == 249 ? 0 : oldest + 1;
    return word;
  }
  void operator()(std::span<std::uint32_t> out) {
    for (std::uint32_t& word : out)
      word = (*this)();
  }
  void operator()(std::span<float> out) {
    for (float& value : out)
      value = static_cast<float>(static_cast<std::int32_t>((*this)())) * 0x1p-32f + 0.5f;
  }
  void operator()(std::span<double> out) {
    for (double& value : out)
      value = static_cast<double>(static_cast<std::int32_t>((*this)())) * 0x1p-32 + 0.5;
  }
};

struct gsl_mt19937 {
  std::shared_ptr<gsl_rng> rng{gsl_rng_alloc(gsl_rng_mt19937), gsl_rng_free};

  void operator()(std::span<double> out) {
    for (double& value : out)
      value = gsl_rng_uniform(rng.get());
  }
};

struct dsfmt_fill {
  std::shared_ptr<dsfmt_t> state;

  dsfmt_fill() : state(std::make_shared<dsfmt_t>()) { dsfmt_init_gen_rand(state.get(), 20211113); }
  void operator()(std::span<double> out) {
    dsfmt_fill_array_close_open(state.get(), out.data(), static_cast<int>(out.size()));
  }
};

template <class Engine>
struct boost_points {
  Engine engine;

  void operator()(std::span<std::uint32_t> out) {
    engine.seed(); // or the sequence ends
    for (std::uint32_t& word : out)
      word = engine();
  }
};

// The plain loop of a Gray code, point by point, as SciPy's Cython has it. The numbers do not matter.
struct plain_sobol {
  std::vector<std::array<std::uint32_t, 32>> numbers;
  std::vector<std::uint32_t> words;

  explicit plain_sobol(std::size_t dimensions) : numbers(dimensions), words(dimensions) {
    std::mt19937 random;
    for (auto& of_dimension : numbers)
      for (std::uint32_t& number : of_dimension)
        number = static_cast<std::uint32_t>(random());
  }
  void operator()(std::span<double> out) {
    std::uint32_t point = 0;
    for (std::size_t i = 0; i + words.size() <= out.size(); i += words.size(), ++point) {
      const auto bit = static_cast<std::size_t>(std::countr_one(point));
      for (std::size_t d = 0; d < words.size(); ++d)
        out[i + d] = words[d] * 0x1p-32;
      for (std::size_t d = 0; d < words.size(); ++d)
        words[d] ^= numbers[d][bit];
    }
  }
};

template <class T, class Peer>
void register_peer(const std::string& name, Peer peer) {
  register_fill<T>("peer/" + name, cached_bytes, peer);
}

template <class Peer>
void register_words_and_reals(const std::string& name, Peer peer) {
  register_peer<std::uint32_t>(name + "/bits", peer);
  register_peer<float>(name + "/float", peer);
  register_peer<double>(name + "/double", peer);
}

} // namespace

void register_peers() {
  register_words_and_reals("std_mt19937", from_engine<std::mt19937>());
  using first_mt2203 = // its first member
      std::mersenne_twister_engine<std::uint32_t, 32, 69, 34, 5, 0xDB110000, 12, 0xFFFFFFFF, 7, 0xCDAAD780,
                                   15, 0xEFC00000, 18, 1812433253>;
  register_words_and_reals("std_mt2203", from_engine<first_mt2203>());
  register_words_and_reals("boost_mt19937", from_engine<boost::random::mt19937>());
  register_words_and_reals(
      "std_mcg31m1",
      from_engine<std::linear_congruential_engine<std::uint32_t, 1132489760, 0, 2147483647>>());
  register_words_and_reals("textbook_mrg32k3a", textbook_mrg32k3a());
  register_words_and_reals("textbook_wichmann_hill", textbook_wichmann_hill());
  register_words_and_reals("textbook_r250", textbook_r250());
  for (const std::size_t dimensions : {1u, 10u, 1000u}) {
    const std::string of = "/bits/dimensions:" + std::to_string(dimensions);
    using sobol = boost::random::sobol_engine<std::uint32_t, 32>;
    using niederreiter = boost::random::niederreiter_base2_engine<std::uint32_t, 32>;
    register_peer<std::uint32_t>("boost_sobol" + of, boost_points<sobol>{sobol(dimensions)});
    register_peer<std::uint32_t>("boost_niederreiter" + of,
                                 boost_points<niederreiter>{niederreiter(dimensions)});
    register_peer<double>("plain_sobol/double/dimensions:" + std::to_string(dimensions),
                          plain_sobol(dimensions));
  }
  register_peer<std::uint32_t>("random123_philox/bits", random123<r123::Philox4x32>());
  register_peer<float>("random123_philox/float", random123<r123::Philox4x32>());
#if R123_USE_AES_NI
  register_peer<std::uint32_t>("random123_ars5/bits", random123<r123::ARS4x32_R<5>>());
  register_peer<float>("random123_ars5/float", random123<r123::ARS4x32_R<5>>());
#endif
  register_peer<double>("gsl_mt19937/double", gsl_mt19937());
  register_peer<double>("dsfmt/double", dsfmt_fill());
}

} // namespace bench
