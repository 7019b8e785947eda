#include <kestro/hvl/exceptions.hpp>

namespace kestro::hvl {
namespace {

std::string with_detail(const char* kind, const std::string& info) {
  return info.empty() ? std::string(kind) : std::string(kind) + ": " + info;
}

std::string with_device(const char* kind, const sycl::device& device) {
  return kind + device.get_info<sycl::info::device::name>();
}

} // namespace

exception::exception(const std::string& domain, const std::string& function, const std::string& info)
    : message_("kestro::hvl") {
  if (!domain.empty())
    message_ += "::" + domain;
  if (!function.empty())
    message_ += "::" + function;
  if (!info.empty())
    message_ += ": " + info;
}

invalid_argument::invalid_argument(const std::string& domain, const std::string& function,
                                   const std::string& info)
    : exception(domain, function, with_detail("invalid argument", info)) {}

unsupported_device::unsupported_device(const std::string& domain, const std::string& function,
                                       const sycl::device& device)
    : exception(domain, function, with_device("unsupported device: ", device)) {}

unimplemented::unimplemented(const std::string& domain, const std::string& function, const std::string& info)
    : exception(domain, function, with_detail("unimplemented functionality", info)) {}

computation_error::computation_error(const std::string& domain, const std::string& function,
                                     const std::string& info)
    : exception(domain, function, with_detail("computation error", info)) {}

device_bad_alloc::device_bad_alloc(const std::string& domain, const std::string& function,
                                   const sycl::device& device)
    : exception(domain, function, with_device("cannot allocate memory on ", device)) {}

} // namespace kestro::hvl
