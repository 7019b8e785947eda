#include "engine_words.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "hvl/engines.hpp"

namespace quality {
namespace {

using hvl::engines::facts;
using hvl::engines::skip_form;
using hvl::engines::word_kind;
using hvl::engines::word_scale;

constexpr named_view views[] = {{view::words, "words"},       {view::reversed, "reversed"},
                                {view::uniforms, "uniforms"}, {view::doubles, "doubles"},
                                {view::blocks, "blocks"},     {view::members, "members"},
                                {view::seeds, "seeds"}};

constexpr facts engines[] = {
#define HVL_ENGINE(name) hvl::engines::name::about,
#include "hvl/engines.def"
#undef HVL_ENGINE
};

void expect_ok(int status) {
  if (status != VQS_STATUS_OK)
    throw std::runtime_error(vqsStatusText(status));
}

class stream {
 public:
  stream(std::int32_t engine, std::uint64_t seed) { expect_ok(vqsNewStream_64(&handle_, engine, seed)); }
  stream(stream&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  ~stream() {
    if (handle_ != nullptr)
      vqsDeleteStream_64(&handle_);
  }

  void skip(std::uint64_t n) { expect_ok(vqsSkipAheadStream_64(handle_, n)); }
  void words(std::span<std::uint32_t> out) {
    expect_ok(viRngUniformBits_64(0, handle_, static_cast<std::int64_t>(out.size()), out.data()));
  }
  void uniforms(std::span<float> out) {
    expect_ok(vsRngUniform_64(VQS_METHOD_UNIFORM_STANDARD, handle_, static_cast<std::int64_t>(out.size()),
                              out.data(), 0, 1));
  }
  void uniforms(std::span<double> out) {
    expect_ok(vdRngUniform_64(VQS_METHOD_UNIFORM_STANDARD, handle_, static_cast<std::int64_t>(out.size()),
                              out.data(), 0, 1));
  }

 private:
  vqs_stream handle_ = nullptr;
};

constexpr unsigned bits_of(word_scale scale) {
  return scale == word_scale::mcg31m1 ? 31 : 32;
}

constexpr std::uint32_t reversed(std::uint32_t x) {
  x = (x >> 1 & 0x55555555) | (x & 0x55555555) << 1;
  x = (x >> 2 & 0x33333333) | (x & 0x33333333) << 2;
  x = (x >> 4 & 0x0F0F0F0F) | (x & 0x0F0F0F0F) << 4;
  x = (x >> 8 & 0x00FF00FF) | (x & 0x00FF00FF) << 8;
  return x >> 16 | x << 16;
}

class words_of_stream : public word_source {
 public:
  words_of_stream(stream s, unsigned bits, bool reverse)
      : word_source(bits), stream_(std::move(s)), reverse_(reverse) {}

  void fill(std::span<std::uint32_t> out) override {
    stream_.words(out);
    for (std::uint32_t& word : out)
      word = reverse_ ? reversed(word) : word << (32 - bits());
  }

 private:
  stream stream_;
  bool reverse_;
};

// The first 24 bits of floats; of doubles the last 32 of 53, the lowest first. A value that rounding has brought to 1
// counts as the one below.
template <class T>
class words_of_uniforms : public word_source {
 public:
  explicit words_of_uniforms(stream s) : word_source(digits == 24 ? 24 : 32), stream_(std::move(s)) {}

  void fill(std::span<std::uint32_t> out) override {
    values_.resize(out.size());
    stream_.uniforms(values_);
    const T whole = std::ldexp(T{1}, digits);
    std::transform(values_.begin(), values_.end(), out.begin(), [&](T value) {
      const auto steps = static_cast<std::uint64_t>(std::min(value * whole, whole - 1));
      return digits == 24 ? static_cast<std::uint32_t>(steps << 8)
                          : reversed(static_cast<std::uint32_t>(steps));
    });
  }

 private:
  static constexpr int digits = std::numeric_limits<T>::digits;
  stream stream_;
  std::vector<T> values_;
};

class interleaved_words : public word_source {
 public:
  interleaved_words(std::vector<stream> streams, unsigned bits)
      : word_source(bits), streams_(std::move(streams)) {}

  void fill(std::span<std::uint32_t> out) override {
    for (std::uint32_t& word : out) {
      if (next_ == words_.size())
        refill();
      word = words_[next_++];
    }
  }

 private:
  void refill() {
    constexpr std::size_t each = 1 << 12;
    words_.resize(each * streams_.size());
    std::vector<std::uint32_t> of_one(each);
    for (std::size_t s = 0; s < streams_.size(); ++s) {
      streams_[s].words(of_one);
      for (std::size_t i = 0; i < each; ++i)
        words_[i * streams_.size() + s] = of_one[i] << (32 - bits());
    }
    next_ = 0;
  }

  std::vector<stream> streams_;
  std::vector<std::uint32_t> words_;
  std::size_t next_ = 0;
};

constexpr std::int32_t substreams = 16;

std::unique_ptr<word_source> interleaved(const facts& engine, view v, std::uint64_t seed) {
  const std::uint64_t apart = std::uint64_t{1} << (engine.scale == word_scale::mcg31m1 ? 27 : 40);
  std::vector<stream> streams;
  for (std::int32_t i = 0; i < substreams; ++i) {
    const auto k = static_cast<std::uint64_t>(i);
    streams.emplace_back(engine.identifier + (v == view::members ? i : 0), seed + (v == view::seeds ? k : 0));
    if (v == view::blocks)
      streams.back().skip(k * apart);
  }
  return std::make_unique<interleaved_words>(std::move(streams), bits_of(engine.scale));
}

template <class Named>
const Named& found(std::span<const Named> all, std::string_view name, const char* what) {
  const auto one = std::find_if(all.begin(), all.end(), [&](const Named& n) { return n.name == name; });
  if (one == all.end())
    throw std::invalid_argument(std::string("no ") + what + " '" + std::string(name) + "'");
  return *one;
}

} // namespace

std::span<const named_view> all_views() {
  return views;
}
std::span<const facts> all_engines() {
  return engines;
}
const facts& engine_named(std::string_view name) {
  return found<facts>(engines, name, "engine");
}
view view_named(std::string_view name) {
  return found<named_view>(views, name, "view").value;
}

bool has_view(const facts& engine, view v) {
  if (engine.is_quasi_random)
    return false;
  if (!engine.is_reproducible)
    return v == view::words;
  switch (v) {
  case view::doubles:
    return engine.kind == word_kind::unsigned64;
  case view::blocks:
    return engine.skip != skip_form::none;
  case view::members:
    return engine.members >= substreams;
  case view::words:
  case view::reversed:
  case view::uniforms:
  case view::seeds:
    break;
  }
  return true;
}

std::unique_ptr<word_source> engine_words(const facts& engine, view v, std::uint64_t seed) {
  if (!has_view(engine, v))
    throw std::invalid_argument(std::string(engine.name) + " has no such view");
  switch (v) {
  case view::words:
  case view::reversed:
    return std::make_unique<words_of_stream>(stream(engine.identifier, seed), bits_of(engine.scale),
                                             v == view::reversed);
  case view::uniforms:
    return std::make_unique<words_of_uniforms<float>>(stream(engine.identifier, seed));
  case view::doubles:
    return std::make_unique<words_of_uniforms<double>>(stream(engine.identifier, seed));
  case view::blocks:
  case view::members:
  case view::seeds:
    break;
  }
  return interleaved(engine, v, seed);
}

} // namespace quality
