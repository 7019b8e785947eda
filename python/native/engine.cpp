#include "engine.hpp"

#include "distributions.hpp"
#include "tools/hvl-rng/catalogue.hpp"
#include "tools/hvl-rng/device_names.hpp"
#include "tools/hvl-rng/engine_traits.hpp"

#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace py = pybind11;

namespace kestro::python {
namespace {

sycl::queue make_queue(const std::string& name) {
  const auto device = hvl_rng::device_named(name);
  if (!device)
    throw std::invalid_argument("device: there is no " + name);
  return sycl::queue(*device, [](sycl::exception_list failures) {
    for (const std::exception_ptr& one : failures)
      std::rethrow_exception(one);
  });
}

// ---- Classes of engines

// An integer has as many bits as the class takes.
template <class Engine>
auto seed_of(std::uint64_t seed) {
  using single = std::conditional_t<hvl_rng::takes_64_bits<Engine>, std::uint64_t, std::uint32_t>;
  if (seed > std::numeric_limits<single>::max())
    throw std::invalid_argument("seed is out of range [0, 2^32)");
  return static_cast<single>(seed);
}

template <class Engine>
const std::vector<std::uint32_t>& seed_of(const std::vector<std::uint32_t>& words) {
  return words;
}

template <class Engine>
std::unique_ptr<hvl_rng::any_engine> start(const sycl::queue& queue, const engine_start& order) {
  if (order.substreams && !hvl_rng::takes_mode<Engine>)
    throw std::invalid_argument("mode: this engine has no modes");
  const auto make = [&](const auto& seed, const auto& form) -> std::unique_ptr<hvl_rng::any_engine> {
    using form_type = std::decay_t<decltype(form)>;
    const auto& own = seed_of<Engine>(seed);
    if constexpr (std::is_same_v<form_type, std::monostate>) {
      if constexpr (hvl_rng::takes_mode<Engine>)
        if (order.substreams)
          return hvl_rng::make_any(Engine(queue, own, hvl::rng::mrg32k3a_mode::custom{*order.substreams}));
      return hvl_rng::make_any(Engine(queue, own));
    } else if constexpr (std::is_same_v<form_type, std::uint32_t> && !hvl_rng::takes_member<Engine>) {
      throw std::invalid_argument("member: this engine has no members");
    } else if constexpr (std::is_constructible_v<Engine, sycl::queue, decltype(own), form_type>) {
      return hvl_rng::make_any(Engine(queue, own, form));
    } else {
      throw std::invalid_argument("member: not several members of this engine with such a seed");
    }
  };
  return std::visit(make, order.seed, order.member);
}

template <class... Engines>
constexpr auto starts(hvl_rng::type_list<Engines...>) {
  return std::array{&start<Engines>...};
}

// A saved state is four little-endian words of 32 bits, the last one the length of what follows, and a checksum.
std::unique_ptr<hvl_rng::any_engine> load(std::size_t index, const sycl::queue& queue,
                                          const std::string& state) {
  constexpr std::size_t around_payload = 20, length_at = 12;
  std::uint64_t payload = 0;
  for (std::size_t i = 0; i < 4 && state.size() >= around_payload; ++i)
    payload |= std::uint64_t{static_cast<unsigned char>(state[length_at + i])} << (8 * i);
  if (state.size() != around_payload + payload)
    throw std::invalid_argument("state: its length is not what it says, or it is none");
  try {
    return hvl_rng::load_any(index, queue, reinterpret_cast<const unsigned char*>(state.data()));
  } catch (const hvl::computation_error& refused) {
    throw std::invalid_argument(refused.what());
  }
}

} // namespace

engine::engine(std::size_t index, const std::string& device, const engine_start& order)
    : queue_(make_queue(device)), engine_(starts(hvl_rng::engine_list()).at(index)(queue_, order)) {}

engine::engine(std::size_t index, const std::string& device, const std::string& state)
    : queue_(make_queue(device)), engine_(load(index, queue_, state)) {}

engine::engine(const engine& other) : queue_(other.queue_) {
  const std::lock_guard lock(other.mutex_);
  engine_ = other.engine_->copy();
}

void engine::generate(std::size_t index, const py::dict& parameters, py::array out) {
  const auto distribution = make_distribution(index, parameters);
  const hvl_rng::distribution_entry& about = hvl_rng::distributions().at(index);
  const bool is_real =
      about.type == hvl_rng::value_type::float32 || about.type == hvl_rng::value_type::float64;
  const bool is_signed = about.type == hvl_rng::value_type::int32;
  if (out.dtype().kind() != (is_real     ? 'f'
                             : is_signed ? 'i'
                                         : 'u') ||
      static_cast<std::size_t>(out.itemsize()) != about.value_bytes ||
      !out.dtype().attr("isnative").cast<bool>())
    throw std::invalid_argument("out: its dtype is not the distribution's");
  if ((out.flags() & py::array::c_style) == 0 || !out.writeable())
    throw std::invalid_argument("out: not contiguous in C order and writeable");
  const auto values = static_cast<std::size_t>(out.size());
  if (values % distribution.values_in_one() != 0)
    throw std::invalid_argument("out: not a whole number of vectors");
  void* const memory = out.mutable_data();

  const py::gil_scoped_release without_python;
  const std::lock_guard lock(mutex_);
  fill(distribution, values / distribution.values_in_one(), memory, values * about.value_bytes);
}

void engine::fill(const hvl_rng::any_distribution& distribution, std::size_t count, void* memory,
                  std::size_t bytes) {
  const auto n = static_cast<std::int64_t>(count);
  if (queue_.get_device().is_cpu()) {
    engine_->generate(distribution, n, memory).wait_and_throw();
    return;
  }
  // NumPy's memory is the host's.
  const auto release = [this](void* shared) { sycl::free(shared, queue_); };
  const std::unique_ptr<void, decltype(release)> shared(
      sycl::malloc_shared(std::max(bytes, std::size_t{1}), queue_), release);
  if (shared == nullptr)
    throw std::bad_alloc();
  engine_->generate(distribution, n, shared.get()).wait_and_throw();
  std::memcpy(memory, shared.get(), bytes);
}

void engine::skip_ahead(const std::vector<std::uint64_t>& distance) {
  const std::lock_guard lock(mutex_);
  engine_->skip_ahead(distance);
}

void engine::leapfrog(std::uint64_t idx, std::uint64_t stride) {
  const std::lock_guard lock(mutex_);
  engine_->leapfrog(idx, stride);
}

py::bytes engine::save() const {
  std::vector<unsigned char> state;
  {
    const py::gil_scoped_release without_python;
    const std::lock_guard lock(mutex_);
    state = engine_->save();
  }
  return py::bytes(reinterpret_cast<const char*>(state.data()), state.size());
}

void engine::draw(std::uint32_t* words, std::size_t count) {
  static const hvl_rng::any_distribution bits{hvl::rng::uniform_bits<std::uint32_t>()};
  const std::lock_guard lock(mutex_);
  fill(bits, count, words, count * sizeof *words);
}

} // namespace kestro::python
