// Errors of asynchronous work, on their way from a command to an async handler.
#pragma once

#include <sycl/exception.hpp>

#include <mutex>

namespace sycl::detail {

/// Where the commands of one queue leave their errors. Commands and queue share it, so that an error outlives
/// either. Errors that nobody asked for go to the user's handler at the end; without one they are printed.
class error_sink {
 public:
  explicit error_sink(async_handler handler) : handler_(std::move(handler)) {}
  error_sink(const error_sink&) = delete;
  error_sink& operator=(const error_sink&) = delete;
  ~error_sink();

  void add(std::exception_ptr error);
  /// Hands over what there is; without a handler prints it and ends the program.
  void deliver();

 private:
  exception_list take();

  const async_handler handler_;
  std::mutex mutex_;
  std::vector<std::exception_ptr> errors_;
};

} // namespace sycl::detail
