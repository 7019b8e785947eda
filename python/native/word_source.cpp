#include "word_source.hpp"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace kestro::python {
namespace {

// As <numpy/random/bitgen.h> declares it; NumPy keeps to it, and so it is not needed here.
struct bitgen_t {
  void* state;
  std::uint64_t (*next_uint64)(void*) noexcept;
  std::uint32_t (*next_uint32)(void*) noexcept;
  double (*next_double)(void*) noexcept;
  std::uint64_t (*next_raw)(void*) noexcept;
};

} // namespace

word_source::word_source(const engine& from) : engine_(std::make_unique<engine>(from)), block_(block_words) {
  const py::gil_scoped_release without_python;
  engine_->draw(block_.data(), block_.size());
}

inline std::uint32_t word_source::next_word() {
  if (next_ == block_.size()) {
    block_.resize(block_words);
    engine_->draw(block_.data(), block_.size());
    next_ = 0;
  }
  return block_[next_++];
}

// NumPy asks for no errors: an engine that fails here ends the process, with the exception's text.
void word_source::connect(const py::capsule& bit_generator) {
  static constexpr auto whole = [](void* self) noexcept {
    auto& words = *static_cast<word_source*>(self);
    const std::uint64_t low = words.next_word();
    return low | std::uint64_t{words.next_word()} << 32;
  };
  constexpr auto half = [](void* self) noexcept { return static_cast<word_source*>(self)->next_word(); };
  constexpr auto real = [](void* self) noexcept { return static_cast<double>(whole(self) >> 11) * 0x1p-53; };
  void* const functions = PyCapsule_GetPointer(bit_generator.ptr(), "BitGenerator");
  if (functions == nullptr)
    throw py::error_already_set();
  *static_cast<bitgen_t*>(functions) = {this, whole, half, real, whole};
}

py::tuple word_source::state() const {
  const std::vector<std::uint32_t> unread(block_.begin() + static_cast<std::ptrdiff_t>(next_), block_.end());
  return py::make_tuple(engine_->save(), unread);
}

void word_source::set_state(const engine& from, const std::vector<std::uint32_t>& unread) {
  auto copy = std::make_unique<engine>(from);
  std::vector<std::uint32_t> block = unread;
  engine_ = std::move(copy);
  block_ = std::move(block);
  next_ = 0;
}

} // namespace kestro::python
