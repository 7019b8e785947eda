// Engines and distributions whose classes are known only when the program runs.
#pragma once

#include "type_lists.hpp"

#include <sycl/sycl.hpp>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace hvl_rng {

template <class Wanted, class... Types>
constexpr std::size_t index_in(type_list<Types...>) {
  std::size_t index = 0;
  (void)((std::is_same_v<Wanted, Types> || (++index, false)) || ...);
  return index;
}

class any_distribution {
 public:
  template <class Distribution>
  explicit any_distribution(Distribution distribution) : index_(index_in<Distribution>(distribution_list())) {
    static_assert(index_in<Distribution>(distribution_list()) < distribution_list::size);
    if constexpr (requires { distribution.dimen(); })
      values_in_one_ = static_cast<std::uint64_t>(distribution.dimen());
    object_ = std::make_shared<const Distribution>(std::move(distribution));
  }

  std::size_t index() const { return index_; } // in distribution_list

  // Numbers in one of a count: of vectors their elements.
  std::uint64_t values_in_one() const { return values_in_one_; }

  const void* object() const { return object_.get(); }

 private:
  std::size_t index_;
  std::uint64_t values_in_one_ = 1;
  std::shared_ptr<const void> object_;
};

// The members throw what those of the class throw, and `unimplemented` where it has none.
class any_engine {
 public:
  virtual ~any_engine() = default;

  virtual std::unique_ptr<any_engine> copy() const = 0;

  // Submits the generation of `count` values into USM memory of the engine's queue.
  virtual sycl::event generate(const any_distribution& distribution, std::int64_t count, void* memory) = 0;

  // `distance` in words of 64 bits, the least first.
  virtual void skip_ahead(const std::vector<std::uint64_t>& distance) = 0;
  virtual void leapfrog(std::uint64_t idx, std::uint64_t stride) = 0;

  virtual std::vector<unsigned char> save() = 0;
};

// There are instances for the classes of engine_list.
template <class Engine>
std::unique_ptr<any_engine> make_any(Engine engine);

// The engine at this place of engine_list, from a whole saved state.
std::unique_ptr<any_engine> load_any(std::size_t index, const sycl::queue& queue, const unsigned char* state);

} // namespace hvl_rng
