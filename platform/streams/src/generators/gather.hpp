// Words of a source that has 64 bits at a time, or none at the moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace hvl::streams {

// Fills `words` by `draw(uint64&)`, which says whether it could. Returns false where it could not, and where the source is
// stuck: gives the same 64 bits twice in a row, as a sound one does once in 2^64 (NIST SP 800-90B, 4.4.1, repetition count
// test). The first draw is compared with and not given out, so nothing need be kept from call to call that threads or a
// forked process could share. Where the result is false, `words` hold nothing of use.
template <class Draw>
bool gather(const Draw& draw, std::uint32_t* words, std::size_t count) noexcept {
  std::uint64_t before;
  if (!draw(before))
    return false;
  for (std::size_t i = 0; i < count; i += 2) {
    std::uint64_t next;
    if (!draw(next) || next == before)
      return false;
    std::memcpy(words + i, &next, count - i < 2 ? sizeof(std::uint32_t) : sizeof next);
    before = next;
  }
  return true;
}

} // namespace hvl::streams
