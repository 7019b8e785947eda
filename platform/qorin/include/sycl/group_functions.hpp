// Functions that all items of a group, or of a sub-group, call together.
//
// Each is one meeting: every item brings its value, the last to arrive computes the results of all in the order
// of the items, and everybody goes on. The order is fixed, so floating-point results are the same in every run.
#pragma once

#include <sycl/functional.hpp>
#include <sycl/nd_item.hpp>

namespace sycl {

namespace detail {

template <class Group>
using if_group = std::enable_if_t<is_group_v<Group>, int>;

/// What an item brings and takes away.
template <class T>
struct exchange {
  T value;
  T result;
};

/// Meets, and lets the last to arrive call `compute(exchanges, members)`.
template <class T, class Group, class Compute>
T exchange_in(const Group& g, const T& value, const Compute& compute) {
  exchange<T> mine{value, value};
  group_access::meet(
      g, &mine,
      [](void* const* brought, std::size_t members, const void* context) {
        const auto at = [brought](std::size_t member) -> exchange<T>& {
          return *static_cast<exchange<T>*>(brought[member]);
        };
        (*static_cast<const Compute*>(context))(at, members);
      },
      &compute);
  return mine.result;
}

/// As above for a result of the whole group that does not depend on the items' values.
template <class T, class Group, class Compute>
T compute_once(const Group& g, T placeholder, const Compute& compute) {
  return exchange_in<T>(g, placeholder, [&](const auto& at, std::size_t members) {
    const T result = compute();
    for (std::size_t i = 0; i < members; ++i)
      at(i).result = result;
  });
}

} // namespace detail

template <class Group, detail::if_group<Group> = 0>
void group_barrier(const Group& g, memory_scope = Group::fence_scope) {
  detail::group_access::meet(g, nullptr, nullptr, nullptr);
}

template <class Group, class T, detail::if_group<Group> = 0>
T group_broadcast(const Group& g, T x, typename Group::linear_id_type from) {
  return detail::exchange_in(g, x, [from](const auto& at, std::size_t members) {
    for (std::size_t i = 0; i < members; ++i)
      at(i).result = at(from).value;
  });
}
template <class Group, class T, detail::if_group<Group> = 0>
T group_broadcast(const Group& g, T x) {
  return group_broadcast(g, x, typename Group::linear_id_type{0});
}
template <class Group, class T, detail::if_group<Group> = 0>
T group_broadcast(const Group& g, T x, typename Group::id_type from) {
  return group_broadcast(
      g, x, static_cast<typename Group::linear_id_type>(detail::linear(from, g.get_local_range())));
}

template <class Group, class T, class BinaryOperation, detail::if_group<Group> = 0>
T reduce_over_group(const Group& g, T x, BinaryOperation op) {
  return detail::exchange_in(g, x, [&op](const auto& at, std::size_t members) {
    T sum = at(0).value;
    for (std::size_t i = 1; i < members; ++i)
      sum = op(sum, at(i).value);
    for (std::size_t i = 0; i < members; ++i)
      at(i).result = sum;
  });
}
template <class Group, class V, class T, class BinaryOperation, detail::if_group<Group> = 0>
T reduce_over_group(const Group& g, V x, T init, BinaryOperation op) {
  return op(init, reduce_over_group(g, static_cast<T>(x), op));
}

template <class Group, class T, class BinaryOperation, detail::if_group<Group> = 0>
T inclusive_scan_over_group(const Group& g, T x, BinaryOperation op) {
  return detail::exchange_in(g, x, [&op](const auto& at, std::size_t members) {
    T sum = at(0).value;
    at(0).result = sum;
    for (std::size_t i = 1; i < members; ++i)
      at(i).result = sum = op(sum, at(i).value);
  });
}
template <class Group, class V, class BinaryOperation, class T, detail::if_group<Group> = 0>
T inclusive_scan_over_group(const Group& g, V x, BinaryOperation op, T init) {
  return op(init, inclusive_scan_over_group(g, static_cast<T>(x), op));
}
template <class Group, class V, class T, class BinaryOperation, detail::if_group<Group> = 0>
T exclusive_scan_over_group(const Group& g, V x, T init, BinaryOperation op) {
  return detail::exchange_in(g, static_cast<T>(x), [&](const auto& at, std::size_t members) {
    T sum = init;
    for (std::size_t i = 0; i < members; ++i) {
      at(i).result = sum;
      sum = op(sum, at(i).value);
    }
  });
}
template <class Group, class T, class BinaryOperation, detail::if_group<Group> = 0>
T exclusive_scan_over_group(const Group& g, T x, BinaryOperation op) {
  return exclusive_scan_over_group(g, x, known_identity_v<BinaryOperation, T>, op);
}

template <class Group, detail::if_group<Group> = 0>
bool any_of_group(const Group& g, bool condition) {
  return reduce_over_group(g, condition, logical_or<bool>());
}
template <class Group, detail::if_group<Group> = 0>
bool all_of_group(const Group& g, bool condition) {
  return reduce_over_group(g, condition, logical_and<bool>());
}
template <class Group, detail::if_group<Group> = 0>
bool none_of_group(const Group& g, bool condition) {
  return !any_of_group(g, condition);
}
template <class Group, class T, class Predicate, detail::if_group<Group> = 0>
bool any_of_group(const Group& g, T x, Predicate holds) {
  return any_of_group(g, static_cast<bool>(holds(x)));
}
template <class Group, class T, class Predicate, detail::if_group<Group> = 0>
bool all_of_group(const Group& g, T x, Predicate holds) {
  return all_of_group(g, static_cast<bool>(holds(x)));
}
template <class Group, class T, class Predicate, detail::if_group<Group> = 0>
bool none_of_group(const Group& g, T x, Predicate holds) {
  return none_of_group(g, static_cast<bool>(holds(x)));
}

// Over memory that the whole group sees: the last item to arrive walks it.

template <class Group, class Pointer, class Predicate, detail::if_group<Group> = 0>
bool joint_any_of(const Group& g, Pointer first, Pointer last, Predicate holds) {
  return detail::compute_once(g, false, [=] {
    for (Pointer p = first; p != last; ++p)
      if (holds(*p))
        return true;
    return false;
  });
}
template <class Group, class Pointer, class Predicate, detail::if_group<Group> = 0>
bool joint_all_of(const Group& g, Pointer first, Pointer last, Predicate holds) {
  return !joint_any_of(g, first, last, [holds](const auto& x) { return !holds(x); });
}
template <class Group, class Pointer, class Predicate, detail::if_group<Group> = 0>
bool joint_none_of(const Group& g, Pointer first, Pointer last, Predicate holds) {
  return !joint_any_of(g, first, last, holds);
}
template <class Group, class Pointer, class T, class BinaryOperation, detail::if_group<Group> = 0>
T joint_reduce(const Group& g, Pointer first, Pointer last, T init, BinaryOperation op) {
  return detail::compute_once(g, init, [=] {
    T sum = init;
    for (Pointer p = first; p != last; ++p)
      sum = op(sum, *p);
    return sum;
  });
}
template <class Group, class Pointer, class BinaryOperation, detail::if_group<Group> = 0>
auto joint_reduce(const Group& g, Pointer first, Pointer last, BinaryOperation op) {
  using T = std::remove_cv_t<std::remove_reference_t<decltype(*first)>>;
  return joint_reduce(g, first, last, known_identity_v<BinaryOperation, T>, op);
}
template <class Group, class In, class Out, class BinaryOperation, class T, detail::if_group<Group> = 0>
Out joint_inclusive_scan(const Group& g, In first, In last, Out to, BinaryOperation op, T init) {
  return detail::compute_once(g, to, [=] {
    Out end = to;
    T sum = init;
    for (In p = first; p != last; ++p)
      *end++ = sum = op(sum, *p);
    return end;
  });
}
template <class Group, class In, class Out, class BinaryOperation, detail::if_group<Group> = 0>
Out joint_inclusive_scan(const Group& g, In first, In last, Out to, BinaryOperation op) {
  using T = std::remove_cv_t<std::remove_reference_t<decltype(*first)>>;
  return joint_inclusive_scan(g, first, last, to, op, known_identity_v<BinaryOperation, T>);
}
template <class Group, class In, class Out, class T, class BinaryOperation, detail::if_group<Group> = 0>
Out joint_exclusive_scan(const Group& g, In first, In last, Out to, T init, BinaryOperation op) {
  return detail::compute_once(g, to, [=] {
    Out end = to;
    T sum = init;
    for (In p = first; p != last; ++p) {
      const T next = op(sum, *p);
      *end++ = sum;
      sum = next;
    }
    return end;
  });
}
template <class Group, class In, class Out, class BinaryOperation, detail::if_group<Group> = 0>
Out joint_exclusive_scan(const Group& g, In first, In last, Out to, BinaryOperation op) {
  using T = std::remove_cv_t<std::remove_reference_t<decltype(*first)>>;
  return joint_exclusive_scan(g, first, last, to, known_identity_v<BinaryOperation, T>, op);
}

// Between the items of a sub-group. An item whose partner does not exist keeps its own value.

namespace detail {
template <class T, class From>
T take_from(const sub_group& g, const T& x, const From& from) {
  return exchange_in(g, x, [&from](const auto& at, std::size_t members) {
    for (std::size_t i = 0; i < members; ++i)
      if (const std::size_t partner = from(i); partner < members)
        at(i).result = at(partner).value;
  });
}
} // namespace detail

template <class T>
T shift_group_left(sub_group g, T x, sub_group::linear_id_type delta = 1) {
  return detail::take_from(g, x, [delta](std::size_t i) { return i + delta; });
}
template <class T>
T shift_group_right(sub_group g, T x, sub_group::linear_id_type delta = 1) {
  return detail::take_from(g, x, [delta](std::size_t i) { return i - delta; });
}
template <class T>
T permute_group_by_xor(sub_group g, T x, sub_group::linear_id_type mask) {
  return detail::take_from(g, x, [mask](std::size_t i) { return i ^ mask; });
}
/// Every item may ask for another partner.
template <class T>
T select_from_group(sub_group g, T x, sub_group::id_type partner) {
  struct request {
    T value;
    std::size_t partner;
  };
  return detail::exchange_in(g, request{x, partner[0]},
                             [](const auto& at, std::size_t members) {
                               for (std::size_t i = 0; i < members; ++i)
                                 if (at(i).value.partner < members)
                                   at(i).result.value = at(at(i).value.partner).value.value;
                             })
      .value;
}

} // namespace sycl
