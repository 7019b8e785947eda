#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sycl/sycl.hpp>

#include "../detail/export.hpp"

namespace kestro::hvl::rng {

/// Fills the first `n` elements of `r` with values of `distribution` from `engine`, on the engine's queue,
/// and advances the engine by what they consume. Returns at once; the buffer orders later uses of `r`.
///
/// Any split of n into calls gives the same numbers, as long as each call but the last asks for a number of
/// values that consumes whole units of its method: an odd `n` of a box_muller2 method wastes one uniform.
///
/// Throws `invalid_argument` ("n") when n is negative or larger than the buffer, and `unimplemented` for a
/// distribution that the engine does not offer; the engine is then unchanged. A failure that only shows when
/// the work runs reaches the queue's asynchronous handler.
template <class Distribution, class Engine>
KESTRO_HVL_API void generate(const Distribution& distribution, Engine& engine, std::int64_t n,
                             sycl::buffer<typename Distribution::result_type, 1>& r);

/// As above into USM memory that the queue's device can reach, after `dependencies`. Returns the event of the
/// generation. Throws `invalid_argument` ("n" when negative, "r" when null).
template <class Distribution, class Engine>
KESTRO_HVL_API sycl::event generate(const Distribution& distribution, Engine& engine, std::int64_t n,
                                    typename Distribution::result_type* r,
                                    const std::vector<sycl::event>& dependencies = {});

/// Advances `engine`; the same as its member, for the engines that have it.
template <class Engine>
void skip_ahead(Engine& engine, std::uint64_t num_to_skip) {
  engine.skip_ahead(num_to_skip);
}

template <class Engine>
void skip_ahead(Engine& engine, std::initializer_list<std::uint64_t> num_to_skip) {
  engine.skip_ahead(num_to_skip);
}

/// Leaves to `engine` every stride-th element from idx on; the same as its member, for the engines that have
/// it.
template <class Engine>
void leapfrog(Engine& engine, std::uint64_t idx, std::uint64_t stride) {
  engine.leapfrog(idx, stride);
}

/// Bytes that `save_state` writes. Throws `computation_error`.
template <class Engine>
KESTRO_HVL_API std::int64_t get_state_size(Engine& engine);

/// Writes the state, as it stands after all earlier calls on `engine`, to `mem`: at least
/// get_state_size(engine) bytes. The bytes are the same on every machine; a mode of `mrg32k3a` and the place in it are
/// among them. Throws `computation_error`; the engine is unchanged.
template <class Engine>
KESTRO_HVL_API void save_state(Engine& engine, unsigned char* mem);

/// As above to a file, which is written whole or not at all; symbolic links are followed. The exception names the file
/// and the reason.
template <class Engine>
KESTRO_HVL_API void save_state(Engine& engine, const std::string& filename);

/// A new engine on `queue` that continues where the saved one stood. A damaged, truncated or foreign state is
/// refused with `computation_error`, which says what is wrong.
template <class Engine>
KESTRO_HVL_API Engine load_state(const sycl::queue& queue, const unsigned char* mem);

/// As above from a file, which the exception names.
template <class Engine>
KESTRO_HVL_API Engine load_state(const sycl::queue& queue, const std::string& filename);

} // namespace kestro::hvl::rng
