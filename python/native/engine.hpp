// An engine as Python holds it.
#pragma once

#include "tools/hvl-rng/any_engine.hpp"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestro::python {

// How an engine begins.
struct engine_start {
  std::variant<std::uint64_t, std::vector<std::uint32_t>> seed;
  std::variant<std::monostate, std::uint32_t, std::vector<std::uint32_t>> member; // or several
  std::optional<std::uint32_t> substreams;
};

// Any number of threads may call the members; what takes long is done without Python's lock.
class engine {
 public:
  engine(std::size_t index, const std::string& device, const engine_start& start);

  // From a saved state. Throws `std::invalid_argument` for one that is damaged or another engine's.
  engine(std::size_t index, const std::string& device, const std::string& state);

  engine(const engine& other);

  // Into an array that is contiguous and of the distribution's type.
  void generate(std::size_t distribution, const pybind11::dict& parameters, pybind11::array out);

  void skip_ahead(const std::vector<std::uint64_t>& distance);
  void leapfrog(std::uint64_t idx, std::uint64_t stride);
  pybind11::bytes save() const;

  // Without Python's lock: `count` words that are uniform in all bits, into memory of the host.
  void draw(std::uint32_t* words, std::size_t count);

 private:
  void fill(const hvl_rng::any_distribution& distribution, std::size_t count, void* memory,
            std::size_t bytes);

  sycl::queue queue_;
  mutable std::mutex mutex_;
  std::unique_ptr<hvl_rng::any_engine> engine_;
};

} // namespace kestro::python
