// An engine's words one by one, as NumPy's generators take them.
#pragma once

#include "engine.hpp"

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kestro::python {

// Owns a copy of the engine. Whoever draws holds the lock of the bit generator.
class word_source {
 public:
  // Throws `unimplemented` for an engine whose words are not uniform in all bits.
  explicit word_source(const engine& from);

  // Has the functions of a NumPy bit generator, whose capsule this is, draw from here, for as long as this lives.
  void connect(const pybind11::capsule& bit_generator);

  // The engine behind the block, and the words of the block that nobody has taken.
  pybind11::tuple state() const;
  void set_state(const engine& from, const std::vector<std::uint32_t>& unread);

 private:
  // Words of a block; they stay in cache.
  static constexpr std::size_t block_words = 4096;

  std::uint32_t next_word();

  std::unique_ptr<engine> engine_;
  std::vector<std::uint32_t> block_;
  std::size_t next_ = 0;
};

} // namespace kestro::python
