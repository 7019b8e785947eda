#include "failure.hpp"
#include "verbs.hpp"

#include <fmt/format.h>

#include <charconv>

namespace hvl_rng {
const char* kind_of(const sycl::device& device) {
  return device.is_cpu()           ? "cpu"
         : device.is_gpu()         ? "gpu"
         : device.is_accelerator() ? "accelerator"
                                   : "other";
}

sycl::device find_device(const std::string& name) {
  const std::vector<sycl::device> devices = sycl::device::get_devices();
  std::size_t number = devices.size();
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  if (error == std::errc() && end == name.data() + name.size() && number < devices.size())
    return devices[number];
  for (const sycl::device& device : devices)
    if (name == kind_of(device) && (device.is_cpu() || device.is_gpu()))
      return device;
  throw failure(exit_status::device, fmt::format("--device {}: no such device (see hvl-rng devices)", name));
}

sycl::queue make_queue(const sycl::device& device) {
  return sycl::queue(device, [](sycl::exception_list failures) {
    for (const std::exception_ptr& one : failures)
      std::rethrow_exception(one);
  });
}

void list_devices() {
  namespace info = sycl::info;
  constexpr const char* row = "{:>2}  {:<11}  {:>5}  {:>10}  {:<24}  {}\n";
  std::string text = fmt::format(row, "", "kind", "units", "group size", "platform", "name");
  std::size_t number = 0;
  for (const sycl::device& device : sycl::device::get_devices())
    text += fmt::format(row, number++, kind_of(device), device.get_info<info::device::max_compute_units>(),
                        device.get_info<info::device::max_work_group_size>(),
                        device.get_platform().get_info<info::platform::name>(),
                        device.get_info<info::device::name>());
  write_output("", text);
}

} // namespace hvl_rng
