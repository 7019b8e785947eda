// Powers of x modulo a polynomial over GF(2). Field has
//
//   static std::size_t degree;
//   using polynomial = std::array<std::uint64_t, ...>;        of a lower degree, coefficient i at bit i % 64 of word i / 64
//   polynomial squared(const polynomial&) const;
//   void multiply_by_x(polynomial&) const;
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

namespace hvl::streams {

template <class Field>
typename Field::polynomial power_of_x(const Field& field, std::span<const std::uint64_t> exponent) {
  std::size_t left = 64 * exponent.size();
  const auto next_bit = [&] {
    --left;
    return exponent[left / 64] >> left % 64 & 1;
  };
  std::size_t low_power = 0; // the first bits, while the power needs no reduction
  while (left != 0 && 2 * low_power + 1 < Field::degree)
    low_power = 2 * low_power + next_bit();
  typename Field::polynomial p{};
  p[low_power / 64] = std::uint64_t{1} << low_power % 64;
  while (left != 0) {
    p = field.squared(p);
    if (next_bit() != 0)
      field.multiply_by_x(p);
  }
  return p;
}

// The powers used last: a split over threads and a repeated skip ask for the same ones again and again.
template <class Field>
class power_cache {
 public:
  using shared_polynomial = std::shared_ptr<const typename Field::polynomial>;

  static shared_polynomial get(std::span<const std::uint64_t> exponent) {
    static power_cache cache;
    return cache.find_or_make(exponent);
  }

 private:
  struct entry {
    std::vector<std::uint64_t> exponent;
    shared_polynomial power;
  };

  shared_polynomial find_or_make(std::span<const std::uint64_t> exponent) {
    {
      const std::scoped_lock lock(mutex_);
      for (auto it = entries_.begin(); it != entries_.end(); ++it)
        if (std::ranges::equal(it->exponent, exponent)) {
          entries_.splice(entries_.begin(), entries_, it);
          return it->power;
        }
    }
    auto power = std::make_shared<const typename Field::polynomial>(power_of_x(Field(), exponent));
    const std::scoped_lock lock(mutex_);
    entries_.push_front({{exponent.begin(), exponent.end()}, power});
    if (entries_.size() > 16)
      entries_.pop_back();
    return power;
  }

  std::mutex mutex_;
  std::list<entry> entries_;
};

} // namespace hvl::streams
