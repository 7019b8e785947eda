// What every test reads: words of `bits` random bits, the highest of which is bit 31; those below are zero.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace quality {

class word_source {
 public:
  explicit word_source(unsigned bits) : bits_(bits) {}
  virtual ~word_source() = default;

  virtual void fill(std::span<std::uint32_t> words) = 0;
  unsigned bits() const { return bits_; }

 private:
  unsigned bits_;
};

// One word after the other. What is buffered and not read is lost.
class word_reader {
 public:
  explicit word_reader(word_source& source) : source_(source), buffer_(std::size_t{1} << 12) {}

  std::uint32_t operator()() {
    if (next_ == buffer_.size()) {
      source_.fill(buffer_);
      next_ = 0;
    }
    return buffer_[next_++];
  }

 private:
  word_source& source_;
  std::vector<std::uint32_t> buffer_;
  std::size_t next_ = buffer_.size();
};

} // namespace quality
