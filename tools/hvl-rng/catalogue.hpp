// The engines and distributions that the library lists, by name.
#pragma once

#include "any_engine.hpp"

#include <sycl/sycl.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace hvl_rng {

enum class value_type { float32, float64, int32, uint32, uint64 };

struct parameter_entry {
  std::string name;
  std::string default_value;
};

// One distribution of one value type and method.
struct distribution_entry {
  std::string name;
  std::string type_name;
  std::string method; // empty where there is no choice
  bool is_default_method;
  value_type type;
  std::size_t value_bytes;
  std::vector<parameter_entry> parameters;
  std::size_t index;
};

struct engine_entry {
  std::string name;
  bool has_uniform_bits;
  bool has_leapfrog;
  std::int32_t members; // 1 where there is no choice
  bool has_modes;
  bool is_quasi_random; // its seed is a number of dimensions
  std::size_t index;
};

// How an engine begins.
struct engine_start {
  std::vector<std::uint64_t> seed = {1}; // several: the words of a list
  std::uint64_t skip = 0;
  std::optional<std::uint64_t> member;
  std::string mode;
};

// Where numbers come from: an engine joined to a distribution.
class source {
 public:
  source(std::unique_ptr<any_engine> engine, any_distribution distribution)
      : engine_(std::move(engine)), distribution_(std::move(distribution)) {}

  // Submits the generation of `count` values into USM memory of the source's queue.
  sycl::event fill(void* memory, std::int64_t count) {
    return engine_->generate(distribution_, count, memory);
  }

  // Numbers in one of the count: of vectors their elements.
  std::uint64_t values_in_one() const { return distribution_.values_in_one(); }

 private:
  std::unique_ptr<any_engine> engine_;
  any_distribution distribution_;
};

using parameter_values = std::map<std::string, std::string>;

const std::vector<engine_entry>& engines();
const std::vector<distribution_entry>& distributions();

const engine_entry& find_engine(const std::string& name);

// Empty `type` or `method` means the distribution's default.
const distribution_entry& find_distribution(const std::string& name, const std::string& type,
                                            const std::string& method);

// Throws `failure` naming the first parameter that the distribution does not have.
void require_known(const distribution_entry& distribution, const parameter_values& given);

// Throws `failure` naming the option for anything that engine or distribution refuses.
std::unique_ptr<source> make_source(const sycl::queue& queue, const engine_entry& engine,
                                    const engine_start& start, const distribution_entry& distribution,
                                    const parameter_values& parameters);

} // namespace hvl_rng
