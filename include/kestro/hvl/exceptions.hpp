#pragma once

#include <exception>
#include <string>

#include <sycl/sycl.hpp>

#include "detail/export.hpp"

namespace kestro::hvl {

/// Base of everything the library throws. `what()` reads "kestro::hvl::<domain>::<function>: <message>"; an
/// empty piece is left out together with its separator.
class KESTRO_HVL_API exception : public std::exception {
 public:
  exception(const std::string& domain, const std::string& function, const std::string& info = {});

  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

/// An argument is outside its range; `info` names it. Nothing was changed.
class KESTRO_HVL_API invalid_argument : public exception {
 public:
  invalid_argument(const std::string& domain, const std::string& function, const std::string& info = {});
};

/// The queue's device is neither a CPU nor a GPU.
class KESTRO_HVL_API unsupported_device : public exception {
 public:
  unsupported_device(const std::string& domain, const std::string& function, const sycl::device& device);
};

/// The library does not offer this combination.
class KESTRO_HVL_API unimplemented : public exception {
 public:
  unimplemented(const std::string& domain, const std::string& function, const std::string& info = {});
};

/// The host-side stream library reported a failure.
class KESTRO_HVL_API computation_error : public exception {
 public:
  computation_error(const std::string& domain, const std::string& function, const std::string& info = {});
};

/// Memory could not be had on the device.
class KESTRO_HVL_API device_bad_alloc : public exception {
 public:
  device_bad_alloc(const std::string& domain, const std::string& function, const sycl::device& device);
};

} // namespace kestro::hvl
