// The operators that vec and marray share, as one list: element by element, on two of a kind or with a scalar
// on either side. Each class names them as hidden friends, so that an argument that converts to the class (a
// swizzle of a vec, say) finds them too.
#pragma once

#include <type_traits>

namespace sycl::detail {

/// Small unsigned integers promote to signed int, whose products may overflow; they compute as unsigned.
template <typename T>
constexpr auto widened(T value) {
  if constexpr (std::is_unsigned_v<T> && !std::is_same_v<T, bool> && sizeof(T) < sizeof(int))
    return static_cast<unsigned>(value);
  else
    return value;
}

} // namespace sycl::detail

// Parameters of all: the class, its element type, its number of elements. `relation` is the class of its
// comparisons and `yes` the element that stands for true there.

#define QORIN_SCALAR_FORMS(op, result, type, element)                                                        \
  friend constexpr result operator op(const type& a, const element& b) {                                     \
    return a op type(b);                                                                                     \
  }                                                                                                          \
  friend constexpr result operator op(const element& a, const type& b) {                                     \
    return type(a) op b;                                                                                     \
  }

#define QORIN_BINARY_OPERATOR(op, type, element, count)                                                      \
  friend constexpr type operator op(const type& a, const type& b) {                                          \
    type result{};                                                                                           \
    for (int i = 0; i < count; ++i)                                                                          \
      result.data_[i] = static_cast<element>(detail::widened(a.data_[i]) op detail::widened(b.data_[i]));    \
    return result;                                                                                           \
  }                                                                                                          \
  QORIN_SCALAR_FORMS(op, type, type, element)                                                                \
  friend constexpr type& operator op##=(type& a, const type& b) {                                            \
    return a = a op b;                                                                                       \
  }                                                                                                          \
  friend constexpr type& operator op##=(type& a, const element& b) {                                         \
    return a = a op type(b);                                                                                 \
  }

// `as` converts the elements first, where it is not empty.
#define QORIN_RELATION_OPERATOR(op, as, type, element, count, relation, yes)                                 \
  friend constexpr relation operator op(const type& a, const type& b) {                                      \
    relation result{};                                                                                       \
    for (int i = 0; i < count; ++i)                                                                          \
      result[i] = (as(a.data_[i]) op as(b.data_[i])) ? yes : 0;                                              \
    return result;                                                                                           \
  }                                                                                                          \
  QORIN_SCALAR_FORMS(op, relation, type, element)

#define QORIN_UNARY_OPERATOR(op, type, element, count)                                                       \
  friend constexpr type operator op(const type& a) {                                                         \
    type result{};                                                                                           \
    for (int i = 0; i < count; ++i)                                                                          \
      result.data_[i] = static_cast<element>(op a.data_[i]);                                                 \
    return result;                                                                                           \
  }

#define QORIN_STEP_OPERATOR(op, type, count)                                                                 \
  friend constexpr type& operator op(type& a) {                                                              \
    for (int i = 0; i < count; ++i)                                                                          \
      op a.data_[i];                                                                                         \
    return a;                                                                                                \
  }                                                                                                          \
  friend constexpr type operator op(type& a, int) {                                                          \
    const type before = a;                                                                                   \
    op a;                                                                                                    \
    return before;                                                                                           \
  }

#define QORIN_ELEMENTWISE_OPERATORS(type, element, count, relation, yes)                                     \
  QORIN_BINARY_OPERATOR(+, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(-, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(*, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(/, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(%, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(&, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(|, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(^, type, element, count)                                                             \
  QORIN_BINARY_OPERATOR(<<, type, element, count)                                                            \
  QORIN_BINARY_OPERATOR(>>, type, element, count)                                                            \
  QORIN_RELATION_OPERATOR(==, , type, element, count, relation, yes)                                         \
  QORIN_RELATION_OPERATOR(!=, , type, element, count, relation, yes)                                         \
  QORIN_RELATION_OPERATOR(<, , type, element, count, relation, yes)                                          \
  QORIN_RELATION_OPERATOR(>, , type, element, count, relation, yes)                                          \
  QORIN_RELATION_OPERATOR(<=, , type, element, count, relation, yes)                                         \
  QORIN_RELATION_OPERATOR(>=, , type, element, count, relation, yes)                                         \
  QORIN_RELATION_OPERATOR(&&, bool, type, element, count, relation, yes)                                     \
  QORIN_RELATION_OPERATOR(||, bool, type, element, count, relation, yes)                                     \
  QORIN_UNARY_OPERATOR(+, type, element, count)                                                              \
  QORIN_UNARY_OPERATOR(-, type, element, count)                                                              \
  QORIN_UNARY_OPERATOR(~, type, element, count)                                                              \
  QORIN_STEP_OPERATOR(++, type, count)                                                                       \
  QORIN_STEP_OPERATOR(--, type, count)                                                                       \
  friend constexpr relation operator!(const type& a) {                                                       \
    relation result{};                                                                                       \
    for (int i = 0; i < count; ++i)                                                                          \
      result[i] = bool(a.data_[i]) ? 0 : yes;                                                                \
    return result;                                                                                           \
  }
