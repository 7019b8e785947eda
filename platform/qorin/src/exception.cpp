#include "errors.hpp"

#include <sycl/context.hpp>

#include <cstdio>

namespace sycl {

namespace {

class category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "sycl"; }
  std::string message(int value) const override {
    switch (static_cast<errc>(value)) {
    case errc::success:
      return "success";
    case errc::runtime:
      return "runtime error";
    case errc::kernel:
      return "kernel error";
    case errc::accessor:
      return "accessor error";
    case errc::nd_range:
      return "nd_range error";
    case errc::event:
      return "event error";
    case errc::kernel_argument:
      return "kernel argument error";
    case errc::build:
      return "build error";
    case errc::invalid:
      return "invalid argument or use";
    case errc::memory_allocation:
      return "memory allocation failed";
    case errc::platform:
      return "platform error";
    case errc::profiling:
      return "profiling error";
    case errc::feature_not_supported:
      return "feature not supported";
    case errc::kernel_not_supported:
      return "kernel not supported";
    case errc::backend_mismatch:
      return "backend mismatch";
    }
    return "unknown error";
  }
};

std::string composed(std::error_code code, const std::string& text) {
  return text.empty() ? code.message() : text;
}

} // namespace

const std::error_category& sycl_category() noexcept {
  static const auto& one = *new category; // outlives static objects that fail
  return one;
}

std::error_code make_error_code(errc e) noexcept {
  return {static_cast<int>(e), sycl_category()};
}

exception::exception(std::error_code code, const std::string& what_arg)
    : text_(std::make_shared<const std::string>(composed(code, what_arg))), code_(code) {}
exception::exception(std::error_code code, const char* what_arg) : exception(code, std::string(what_arg)) {}
exception::exception(std::error_code code) : exception(code, std::string()) {}
exception::exception(int value, const std::error_category& category, const std::string& what_arg)
    : exception(std::error_code(value, category), what_arg) {}
exception::exception(int value, const std::error_category& category, const char* what_arg)
    : exception(std::error_code(value, category), what_arg) {}
exception::exception(int value, const std::error_category& category)
    : exception(std::error_code(value, category)) {}
exception::exception(context ctx, std::error_code code, const std::string& what_arg)
    : exception(code, what_arg) {
  context_ = detail::handle_access::state(ctx);
}
exception::exception(context ctx, std::error_code code, const char* what_arg)
    : exception(std::move(ctx), code, std::string(what_arg)) {}
exception::exception(context ctx, std::error_code code) : exception(std::move(ctx), code, std::string()) {}
exception::exception(context ctx, int value, const std::error_category& category, const std::string& what_arg)
    : exception(std::move(ctx), std::error_code(value, category), what_arg) {}
exception::exception(context ctx, int value, const std::error_category& category, const char* what_arg)
    : exception(std::move(ctx), std::error_code(value, category), std::string(what_arg)) {}
exception::exception(context ctx, int value, const std::error_category& category)
    : exception(std::move(ctx), std::error_code(value, category)) {}
exception::exception(const exception&) noexcept = default;
exception& exception::operator=(const exception&) noexcept = default;
exception::~exception() = default;

const char* exception::what() const noexcept {
  return text_->c_str();
}

context exception::get_context() const {
  if (!context_)
    throw exception(make_error_code(errc::invalid), "the exception has no context");
  return detail::handle_access::make<context>(context_);
}

namespace detail {

struct error_list_access {
  static exception_list make(std::vector<std::exception_ptr> errors) {
    exception_list list;
    list.errors_ = std::move(errors);
    return list;
  }
};

namespace {

void print(const exception_list& errors) {
  for (const std::exception_ptr& error : errors) {
    try {
      std::rethrow_exception(error);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "sycl: unhandled asynchronous error: %s\n", e.what());
    } catch (...) {
      std::fputs("sycl: unhandled asynchronous error that is no std::exception\n", stderr);
    }
  }
}

} // namespace

error_sink::~error_sink() {
  if (errors_.empty())
    return;
  const exception_list errors = take();
  if (handler_)
    handler_(errors);
  else
    print(errors);
}

void error_sink::add(std::exception_ptr error) {
  const std::lock_guard lock(mutex_);
  errors_.push_back(std::move(error));
}

void error_sink::deliver() {
  const exception_list errors = take();
  if (errors.size() == 0)
    return;
  if (handler_) {
    handler_(errors);
    return;
  }
  print(errors);
  std::terminate();
}

exception_list error_sink::take() {
  const std::lock_guard lock(mutex_);
  return error_list_access::make(std::exchange(errors_, {}));
}

} // namespace detail
} // namespace sycl
