// Errors: `sycl::exception` carries an `errc` code, a text and, where one is at hand, the context it happened in.
// Errors of work that runs later (host tasks, kernels) are collected in an `exception_list` and go to the
// `async_handler` of the queue.
#pragma once

#include <sycl/detail/config.hpp>

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

namespace sycl {

class context;
namespace detail {
class context_state;
struct error_list_access;
} // namespace detail

enum class errc : int {
  success = 0,
  runtime,
  kernel,
  accessor,
  nd_range,
  event,
  kernel_argument,
  build,
  invalid,
  memory_allocation,
  platform,
  profiling,
  feature_not_supported,
  kernel_not_supported,
  backend_mismatch
};

QORIN_EXPORT const std::error_category& sycl_category() noexcept;
QORIN_EXPORT std::error_code make_error_code(errc e) noexcept;

class QORIN_EXPORT exception : public virtual std::exception {
 public:
  exception(std::error_code code, const std::string& what_arg);
  exception(std::error_code code, const char* what_arg);
  exception(std::error_code code);
  exception(int value, const std::error_category& category, const std::string& what_arg);
  exception(int value, const std::error_category& category, const char* what_arg);
  exception(int value, const std::error_category& category);
  exception(context ctx, std::error_code code, const std::string& what_arg);
  exception(context ctx, std::error_code code, const char* what_arg);
  exception(context ctx, std::error_code code);
  exception(context ctx, int value, const std::error_category& category, const std::string& what_arg);
  exception(context ctx, int value, const std::error_category& category, const char* what_arg);
  exception(context ctx, int value, const std::error_category& category);
  exception(const exception&) noexcept;
  exception& operator=(const exception&) noexcept;
  ~exception() override;

  const std::error_code& code() const noexcept { return code_; }
  const std::error_category& category() const noexcept { return code_.category(); }
  const char* what() const noexcept override;
  bool has_context() const noexcept { return context_ != nullptr; }
  context get_context() const;

 private:
  std::shared_ptr<const std::string> text_;
  std::error_code code_;
  std::shared_ptr<detail::context_state> context_;
};

/// Errors of asynchronous work, oldest first.
class exception_list {
 public:
  using value_type = std::exception_ptr;
  using reference = value_type&;
  using const_reference = const value_type&;
  using size_type = std::size_t;
  using iterator = std::vector<std::exception_ptr>::const_iterator;
  using const_iterator = iterator;

  size_type size() const { return errors_.size(); }
  iterator begin() const { return errors_.begin(); }
  iterator end() const { return errors_.end(); }

 private:
  friend struct detail::error_list_access;
  std::vector<std::exception_ptr> errors_;
};

using async_handler = std::function<void(exception_list)>;

} // namespace sycl

template <>
struct std::is_error_code_enum<sycl::errc> : std::true_type {};
