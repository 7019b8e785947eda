// Reductions of parallel_for.
//
// Partial results belong to fixed blocks of items, or to work-groups, and are combined in their order. Threads and
// instruction sets therefore do not change the result, not even of floating-point sums.
#pragma once

#include <sycl/accessor.hpp>
#include <sycl/detail/group_kernel.hpp>
#include <sycl/functional.hpp>
#include <sycl/span.hpp>

#include <tuple>
#include <vector>

namespace sycl {

/// Where a kernel leaves its contributions to one reduction: of a variable or, in one dimension, of the elements of a
/// span, each of which has a reducer.
template <class T, class BinaryOperation, int Dimensions = 0, std::size_t Extent = 1>
class reducer {
 public:
  using value_type = T;
  using binary_operation = BinaryOperation;
  static constexpr int dimensions = Dimensions;

  reducer(T* partials, const T& identity, const BinaryOperation& operation)
      : partials_(partials), identity_(identity), operation_(operation) {}
  reducer(const reducer&) = delete;
  reducer& operator=(const reducer&) = delete;

  T identity() const { return identity_; }

  template <int N = Dimensions, std::enable_if_t<N == 1, int> = 0>
  reducer<T, BinaryOperation> operator[](id<1> index) {
    return {partials_ + index[0], identity_, operation_};
  }

  template <int N = Dimensions, std::enable_if_t<N == 0, int> = 0>
  reducer& combine(const T& value) {
    *partials_ = static_cast<T>(operation_(*partials_, value));
    return *this;
  }
#define QORIN_REDUCER_OPERATOR(op, object)                                                                   \
  template <class Op = BinaryOperation,                                                                      \
            std::enable_if_t<Dimensions == 0 && detail::is_operator<object, Op, T>, int> = 0>                \
  reducer& operator op(const T& value) {                                                                     \
    return combine(value);                                                                                   \
  }
  QORIN_REDUCER_OPERATOR(+=, plus)
  QORIN_REDUCER_OPERATOR(*=, multiplies)
  QORIN_REDUCER_OPERATOR(&=, bit_and)
  QORIN_REDUCER_OPERATOR(|=, bit_or)
  QORIN_REDUCER_OPERATOR(^=, bit_xor)
#undef QORIN_REDUCER_OPERATOR
  template <class Op = BinaryOperation,
            std::enable_if_t<Dimensions == 0 && detail::is_operator<plus, Op, T>, int> = 0>
  reducer& operator++() {
    return combine(T(1));
  }

 private:
  T* partials_;
  T identity_;
  BinaryOperation operation_;
};

namespace detail {

/// A partial result of each element that is reduced.
template <class T, std::size_t Extent>
class partial_results {
 public:
  explicit partial_results(const T& identity)
      : partial_results(identity, std::make_index_sequence<Extent>()) {}
  T* data() { return values_; }
  const T* data() const { return values_; }

 private:
  template <std::size_t... I>
  partial_results(const T& identity, std::index_sequence<I...>)
      : values_{(static_cast<void>(I), identity)...} {}
  T values_[Extent];
};

/// A reduction as parallel_for takes it: where the results go and how values combine.
template <class T, class BinaryOperation, int Dimensions = 0, std::size_t Extent = 1>
struct reduction_request {
  using partials_type = partial_results<T, Extent>;

  T* results;
  T identity;
  BinaryOperation operation;
  bool ignore_old_value;

  void store(const std::vector<partials_type>& partials) const {
    for (std::size_t i = 0; i < Extent; ++i) {
      T sum = ignore_old_value ? identity : results[i];
      for (const partials_type& partial : partials)
        sum = static_cast<T>(operation(sum, partial.data()[i]));
      results[i] = sum;
    }
  }
};

inline bool ignores_old_value(const property_list& properties) {
  return properties.has_property<property::reduction::initialize_to_identity>();
}

/// One reduction during a launch: partial results for each block of items.
template <class T, class BinaryOperation, int Dimensions, std::size_t Extent>
struct reduction_part {
  using reducer_type = reducer<T, BinaryOperation, Dimensions, Extent>;

  partial_results<T, Extent>* partials;
  T identity;
  BinaryOperation operation;

  reducer_type of_block(std::size_t block) const { return {partials[block].data(), identity, operation}; }

  /// The partial results of one block while its items run; kept apart from the others for the compiler's sake.
  class accumulator {
   public:
    accumulator(const reduction_part& part, std::size_t block)
        : slot_(part.partials + block), value_(*slot_),
          reducer_(value_.data(), part.identity, part.operation) {}
    accumulator(const accumulator&) = delete;
    accumulator& operator=(const accumulator&) = delete;
    ~accumulator() { *slot_ = value_; }
    reducer_type& get() { return reducer_; }

   private:
    partial_results<T, Extent>* slot_;
    partial_results<T, Extent> value_;
    reducer_type reducer_;
  };
};

template <class T, class BinaryOperation, int Dimensions, std::size_t Extent>
reduction_part<T, BinaryOperation, Dimensions, Extent>
part_of(const reduction_request<T, BinaryOperation, Dimensions, Extent>& request,
        std::vector<partial_results<T, Extent>>& partials) {
  return {partials.data(), request.identity, request.operation};
}

/// Makes the partial results for the requests, runs `launch(parts...)`, and stores the results.
template <class Launch, class... Requests>
void reduce(std::size_t blocks, const Launch& launch, const Requests&... requests) {
  using std::vector;
  auto partials = std::make_tuple(vector<typename Requests::partials_type>(
      blocks, typename Requests::partials_type(requests.identity))...);
  std::apply([&](auto&... of) { launch(part_of(requests, of)...); }, partials);
  std::apply([&](const auto&... of) { (requests.store(of), ...); }, partials);
}

template <int Dimensions, class Kernel, class... Accumulators>
void reduce_block(const range<Dimensions>& extent, std::ptrdiff_t begin, std::ptrdiff_t end,
                  const Kernel& kernel, Accumulators&&... accumulators) {
  for_each_row(extent, begin, end, [&](id<Dimensions> at, std::ptrdiff_t first, std::ptrdiff_t last) {
    for (std::ptrdiff_t i = first; i < last; ++i) {
      at[Dimensions - 1] = static_cast<std::size_t>(i);
      kernel(item_access::make(at, extent), accumulators.get()...);
    }
  });
}

template <std::size_t... I, int Dimensions, class All>
void run_range_reduction(std::index_sequence<I...>, const range<Dimensions>& extent, const All& all) {
  constexpr std::ptrdiff_t block_items = 1024;
  const auto items = static_cast<std::ptrdiff_t>(extent.size());
  const auto blocks = static_cast<std::size_t>((items + block_items - 1) / block_items);
  const auto& kernel = std::get<sizeof...(I)>(all);
  reduce(
      blocks,
      [&](const auto&... parts) {
        run_range(range<1>(blocks), [=](id<1> block) {
          const auto begin = static_cast<std::ptrdiff_t>(block[0]) * block_items;
          const auto end = items - begin < block_items ? items : begin + block_items;
          reduce_block(extent, begin, end, kernel,
                       typename std::decay_t<decltype(parts)>::accumulator(parts, block[0])...);
        });
      },
      std::get<I>(all)...);
}

/// `all` is the reductions' requests and then the kernel.
template <int Dimensions, class... All>
void run_range_reduction(const range<Dimensions>& extent, const All&... all) {
  run_range_reduction(std::make_index_sequence<sizeof...(All) - 1>(), extent, std::tie(all...));
}

template <class Kernel, class Item, class... Reducers>
void call_with(const Kernel& kernel, const Item& item, Reducers&&... reducers) {
  kernel(item, reducers...);
}

template <std::size_t... I, int Dimensions, class All>
void run_nd_range_reduction(std::index_sequence<I...>, const nd_range<Dimensions>& extent,
                            std::size_t local_bytes, const All& all) {
  const auto& kernel = std::get<sizeof...(I)>(all);
  reduce(
      extent.get_group_range().size(),
      [&](const auto&... parts) {
        run_nd_range(extent, local_bytes, [=](nd_item<Dimensions> item) {
          const std::size_t group = item.get_group_linear_id();
          call_with(kernel, item, parts.of_block(group)...);
        });
      },
      std::get<I>(all)...);
}
template <int Dimensions, class... All>
void run_nd_range_reduction(const nd_range<Dimensions>& extent, std::size_t local_bytes, const All&... all) {
  run_nd_range_reduction(std::make_index_sequence<sizeof...(All) - 1>(), extent, local_bytes,
                         std::tie(all...));
}

template <class Buffer, class Operation>
auto buffer_reduction(Buffer& variable, handler& commands, typename Buffer::value_type identity,
                      Operation operation, const property_list& properties) {
  const accessor result(variable, commands, read_write);
  if (result.size() != 1)
    throw exception(make_error_code(errc::invalid), "reduction: the buffer must have one element");
  return reduction_request<typename Buffer::value_type, Operation>{&*result.begin(), identity, operation,
                                                                   ignores_old_value(properties)};
}

} // namespace detail

/// The result goes to `*variable`, or to each element of a span of fixed extent, combined with its old value. Without an
/// identity one must be known for the operation.
template <class T, class BinaryOperation>
auto reduction(T* variable, const std::common_type_t<T>& identity, BinaryOperation operation,
               const property_list& properties = {}) {
  return detail::reduction_request<T, BinaryOperation>{variable, identity, operation,
                                                       detail::ignores_old_value(properties)};
}
template <class T, class BinaryOperation>
auto reduction(T* variable, BinaryOperation operation, const property_list& properties = {}) {
  return reduction(variable, known_identity_v<BinaryOperation, T>, operation, properties);
}
template <class T, int Dimensions, class AllocatorT, class BinaryOperation>
auto reduction(buffer<T, Dimensions, AllocatorT> variable, handler& commands,
               const std::common_type_t<T>& identity, BinaryOperation operation,
               const property_list& properties = {}) {
  return detail::buffer_reduction(variable, commands, identity, operation, properties);
}
template <class T, int Dimensions, class AllocatorT, class BinaryOperation>
auto reduction(buffer<T, Dimensions, AllocatorT> variable, handler& commands, BinaryOperation operation,
               const property_list& properties = {}) {
  return detail::buffer_reduction(variable, commands, known_identity_v<BinaryOperation, T>, operation,
                                  properties);
}

template <class T, std::size_t Extent, class BinaryOperation>
auto reduction(span<T, Extent> variables, const std::common_type_t<T>& identity, BinaryOperation operation,
               const property_list& properties = {}) {
  static_assert(Extent != dynamic_extent, "a reduction needs to know how many elements its span has");
  return detail::reduction_request<T, BinaryOperation, 1, Extent>{variables.data(), identity, operation,
                                                                  detail::ignores_old_value(properties)};
}
template <class T, std::size_t Extent, class BinaryOperation>
auto reduction(span<T, Extent> variables, BinaryOperation operation, const property_list& properties = {}) {
  return reduction(variables, known_identity_v<BinaryOperation, T>, operation, properties);
}

} // namespace sycl
