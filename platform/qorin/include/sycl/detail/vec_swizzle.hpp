// Views of some elements of a vec, as its swizzles return them. They live no longer than the vec.
#pragma once

#include <sycl/vec.hpp>

namespace sycl::detail {

/// One element: behaves as a reference to it, T const for an element of a const vec.
template <typename T>
class vec_element {
 public:
  using element_type = std::remove_const_t<T>;
  using value_type = element_type;

  explicit constexpr vec_element(T& element) : element_(&element) {}
  vec_element(const vec_element&) = default;

  constexpr operator element_type() const { return *element_; }
  constexpr operator vec<element_type, 1>() const { return vec<element_type, 1>(*element_); }

  constexpr const vec_element& operator=(const element_type& value) const {
    *element_ = value;
    return *this;
  }
  constexpr const vec_element& operator=(const vec_element& other) const { return *this = *other.element_; }
  constexpr vec_element& operator=(const vec_element& other) {
    *element_ = *other.element_;
    return *this;
  }

#define QORIN_ASSIGNMENT(op)                                                                                 \
  constexpr const vec_element& operator op##=(const element_type& value) const {                             \
    *element_ = static_cast<element_type>(widened(*element_) op widened(value));                             \
    return *this;                                                                                            \
  }
  QORIN_ASSIGNMENT(+)
  QORIN_ASSIGNMENT(-)
  QORIN_ASSIGNMENT(*)
  QORIN_ASSIGNMENT(/)
  QORIN_ASSIGNMENT(%)
  QORIN_ASSIGNMENT(&)
  QORIN_ASSIGNMENT(|)
  QORIN_ASSIGNMENT(^)
  QORIN_ASSIGNMENT(<<)
  QORIN_ASSIGNMENT(>>)
#undef QORIN_ASSIGNMENT

  constexpr const vec_element& operator++() const {
    return *this += element_type(1);
  }
  constexpr const vec_element& operator--() const {
    return *this -= element_type(1);
  }
  constexpr element_type operator++(int) const {
    return (*element_)++;
  }
  constexpr element_type operator--(int) const {
    return (*element_)--;
  }

  static constexpr std::size_t size() noexcept {
    return 1;
  }
  static constexpr std::size_t byte_size() noexcept {
    return sizeof(element_type);
  }
  constexpr T& operator[](int) const {
    return *element_;
  }

 private:
  T* element_;
};

/// Several elements: converts to Result, the vec of them, wherever a value is wanted, and so has its
/// operators.
template <typename Result, typename Source, int... Indices>
class vec_swizzle : public vec_names<vec_swizzle<Result, Source, Indices...>, int(sizeof...(Indices))> {
 public:
  using element_type = typename Result::element_type;
  using value_type = element_type;

  explicit constexpr vec_swizzle(Source& source) : source_(&source) {}
  vec_swizzle(const vec_swizzle&) = default;

  constexpr operator Result() const { return Result((*source_)[Indices]...); }

  constexpr const vec_swizzle& operator=(const Result& value) const {
    int at = 0;
    (((*source_)[Indices] = value[at++]), ...);
    return *this;
  }
  constexpr const vec_swizzle& operator=(const element_type& value) const { return *this = Result(value); }
  constexpr const vec_swizzle& operator=(const vec_swizzle& other) const {
    return *this = static_cast<Result>(other);
  }
  constexpr vec_swizzle& operator=(const vec_swizzle& other) {
    static_cast<const vec_swizzle&>(*this) = static_cast<Result>(other);
    return *this;
  }

#define QORIN_ASSIGNMENT(op)                                                                                 \
  constexpr const vec_swizzle& operator op##=(const Result& value) const {                                   \
    return *this = static_cast<Result>(*this) op value;                                                      \
  }                                                                                                          \
  constexpr const vec_swizzle& operator op##=(const element_type& value) const {                             \
    return *this = static_cast<Result>(*this) op value;                                                      \
  }
  QORIN_ASSIGNMENT(+)
  QORIN_ASSIGNMENT(-)
  QORIN_ASSIGNMENT(*)
  QORIN_ASSIGNMENT(/)
  QORIN_ASSIGNMENT(%)
  QORIN_ASSIGNMENT(&)
  QORIN_ASSIGNMENT(|)
  QORIN_ASSIGNMENT(^)
  QORIN_ASSIGNMENT(<<)
  QORIN_ASSIGNMENT(>>)
#undef QORIN_ASSIGNMENT

  constexpr const vec_swizzle& operator++() const {
    return *this += element_type(1);
  }
  constexpr const vec_swizzle& operator--() const {
    return *this -= element_type(1);
  }
  constexpr Result operator++(int) const {
    const Result before = *this;
    ++*this;
    return before;
  }
  constexpr Result operator--(int) const {
    const Result before = *this;
    --*this;
    return before;
  }

  static constexpr std::size_t size() noexcept {
    return Result::size();
  }
  static constexpr std::size_t byte_size() noexcept {
    return Result::byte_size();
  }
  constexpr decltype(auto) operator[](int index) const {
    constexpr int indices[] = {Indices...};
    return (*source_)[indices[index]];
  }

  template <typename ConvertT, rounding_mode Mode = rounding_mode::automatic>
  constexpr auto convert() const {
    return static_cast<Result>(*this).template convert<ConvertT, Mode>();
  }
  template <typename AsT>
  constexpr AsT as() const {
    return static_cast<Result>(*this).template as<AsT>();
  }
  template <int... Positions>
  constexpr auto swizzle() const {
    return source_->template swizzle<index_at(Positions)...>();
  }
  template <typename T, access::address_space Space, access::decorated IsDecorated>
  void load(std::size_t offset, multi_ptr<T, Space, IsDecorated> ptr) const {
    Result value;
    value.load(offset, ptr);
    *this = value;
  }
  template <access::address_space Space, access::decorated IsDecorated>
  void store(std::size_t offset, multi_ptr<element_type, Space, IsDecorated> ptr) const {
    static_cast<Result>(*this).store(offset, ptr);
  }

 private:
  static constexpr int index_at(int position) {
    constexpr int indices[] = {Indices...};
    return indices[position];
  }

  Source* source_;
};

} // namespace sycl::detail
