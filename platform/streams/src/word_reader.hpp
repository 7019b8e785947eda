// Reads an engine's words block by block through the fastest way that the engine has.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "simd/kernels.hpp"

namespace hvl::streams {

class word_reader {
 public:
  // `total_words` is what will be taken altogether; close() must follow when all are.
  word_reader(const engine& e, const block_kernel* kernel, void* record, std::uint64_t total_words) noexcept
      : engine_(e), record_(record), word_bytes_(word_bytes(e.kind)), left_(total_words),
        total_(total_words) {
    if (kernel != nullptr && total_words >= kernel->least_words) {
      kernel_ = kernel;
      lead_ = kernel->open(record, workspace_);
    }
  }
  word_reader(const word_reader&) = delete;
  word_reader& operator=(const word_reader&) = delete;

  // Brings in another block behind the words not yet taken (fewer than 16 of them), and returns how many
  // words now lie at words(): at most what is left in all.
  std::size_t refill() noexcept {
    std::byte* const block = buffer_ + carry_bytes;
    std::memmove(block - unread_ * word_bytes_, words(), unread_ * word_bytes_);
    begin_ = block - unread_ * word_bytes_;
    const std::uint64_t wanted = left_ - unread_;
    std::size_t fresh;
    if (kernel_ == nullptr) {
      fresh = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, scalar_block_words));
      engine_.draw(record_, block, fresh);
    } else {
      const std::uint64_t reach = std::min<std::uint64_t>(wanted + lead_, kernel_->block_words);
      const std::size_t granules = granules_for(reach);
      kernel_->run(workspace_, block, granules);
      fresh =
          static_cast<std::size_t>(std::min<std::uint64_t>(granules * kernel_->granule_words, reach)) - lead_;
      begin_ += lead_ * word_bytes_;
      lead_ = 0;
    }
    unread_ += fresh;
    return unread_;
  }

  const void* words() const noexcept { return begin_; }

  void take(std::size_t words) noexcept {
    begin_ += words * word_bytes_;
    unread_ -= words;
    left_ -= words;
  }

  // The values, one to a word, that the engine can write itself at once; 0 where it cannot, or not here.
  std::size_t direct_granule() const noexcept {
    return kernel_ == nullptr || lead_ != 0 || unread_ != 0 ? 0 : kernel_->granule_words;
  }
  bool can_stream() const noexcept { return kernel_->can_stream; }

  // Has whole granules of values written to `out`, as many as `values` allow; returns how many values. Only where
  // direct_granule is not 0; streaming where can_stream and `out` is aligned.
  std::size_t take_values(void* out, std::uint64_t values, const direct_values& form,
                          bool streaming) noexcept {
    const std::size_t granules = values / kernel_->granule_words;
    kernel_->run_values(workspace_, out, granules, form, streaming);
    left_ -= granules * kernel_->granule_words;
    return granules * kernel_->granule_words;
  }

  void close() noexcept {
    if (kernel_ == nullptr)
      return;
    if (kernel_->close != nullptr)
      kernel_->close(workspace_, record_, total_);
    else
      engine_.advance(record_, std::span(&total_, 1));
  }

 private:
  static constexpr std::size_t scalar_block_words = 2048;
  static constexpr std::size_t carry_bytes = 128;
  static constexpr std::size_t readable_bytes_behind = 128;

  std::size_t granules_for(std::uint64_t words) const noexcept {
    return static_cast<std::size_t>((words + kernel_->granule_words - 1) / kernel_->granule_words);
  }

  const engine& engine_;
  const block_kernel* kernel_ = nullptr;
  void* record_;
  std::size_t word_bytes_;
  std::uint64_t left_;
  std::uint64_t total_;
  std::uint32_t lead_ = 0;
  std::size_t unread_ = 0;
  alignas(vector_alignment) std::byte workspace_[workspace_bytes];
  alignas(vector_alignment) std::byte buffer_[carry_bytes + max_block_words * 8 + readable_bytes_behind];
  std::byte* begin_ = buffer_ + carry_bytes;
};

} // namespace hvl::streams
