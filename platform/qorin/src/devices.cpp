// Platforms, devices and selectors: what there is to run on.
#include "objects.hpp"

#include <hvl/core.h>

#include <algorithm>

#include <unistd.h>

namespace sycl {

namespace detail {

namespace {

constexpr const char* runtime_version = "0.1.0";

std::shared_ptr<platform_state> make_platform(backend kind, const char* name, info::device_type type,
                                              const char* device_name, std::vector<aspect> aspects) {
  auto p = std::make_shared<platform_state>();
  p->kind = kind;
  p->name = name;
  p->version = std::string("SYCL 2020, runtime ") + runtime_version;
  auto d = std::make_shared<device_state>();
  d->type = type;
  d->driver_version = p->version;
  d->name = device_name;
  d->aspects = std::move(aspects);
  d->platform = p;
  p->devices.push_back(std::move(d));
  return p;
}

bool accelerator_wanted() {
  char text[8];
  return hvl_serv_getenv("QORIN_ACCELERATOR", text, sizeof text) > 0 && std::string_view(text) == "1";
}

} // namespace

std::vector<aspect> host_thread_aspects(std::initializer_list<aspect> kind) {
  std::vector<aspect> all = kind;
  for (aspect common :
       {aspect::fp64, aspect::atomic64, aspect::queue_profiling, aspect::usm_device_allocations,
        aspect::usm_host_allocations, aspect::usm_atomic_host_allocations, aspect::usm_shared_allocations,
        aspect::usm_atomic_shared_allocations, aspect::usm_system_allocations})
    all.push_back(common);
  return all;
}

const std::vector<std::shared_ptr<platform_state>>& known_platforms() {
  static const auto& platforms = *new std::vector<std::shared_ptr<platform_state>>([] {
    std::vector<std::shared_ptr<platform_state>> all;
    all.push_back(make_platform(backend::host, "Kestro Host", info::device_type::cpu,
                                "Kestro CPU (host threads)",
                                host_thread_aspects({aspect::cpu, aspect::host_debuggable})));
    all.push_back(make_platform(backend::zerlin, "Kestro Zerlin Emulation", info::device_type::gpu,
                                "Kestro Emulated GPU (host threads)",
                                host_thread_aspects({aspect::gpu, aspect::emulated})));
    all.push_back(make_platform(backend::host, "Kestro Accelerator Emulation", info::device_type::accelerator,
                                "Kestro Emulated Accelerator (host threads)",
                                host_thread_aspects({aspect::accelerator, aspect::emulated})));
    all.back()->visible = accelerator_wanted;
    return all;
  }());
  return platforms;
}

bool device_state::has(aspect asp) const {
  return std::find(aspects.begin(), aspects.end(), asp) != aspects.end();
}

device select_device(const std::function<int(const device&)>& score) {
  std::optional<device> best;
  int best_score = -1;
  for (const device& candidate : device::get_devices()) {
    const int s = score(candidate);
    if (s > best_score) {
      best = candidate;
      best_score = s;
    }
  }
  if (!best)
    throw exception(make_error_code(errc::runtime), "no device satisfies the selector");
  return *best;
}

// The CPU device is the first choice: it is the one that is what it says.
int default_selector::operator()(const device& d) const {
  return d.is_cpu() ? 2 : d.is_gpu() ? 1 : 0;
}
int cpu_selector::operator()(const device& d) const {
  return d.is_cpu() ? 1 : -1;
}
int gpu_selector::operator()(const device& d) const {
  return d.is_gpu() ? 1 : -1;
}
int accelerator_selector::operator()(const device& d) const {
  return d.is_accelerator() ? 1 : -1;
}

} // namespace detail

std::function<int(const device&)> aspect_selector(const std::vector<aspect>& wanted,
                                                  const std::vector<aspect>& denied) {
  return [wanted, denied](const device& d) {
    const auto has = [&](aspect a) { return d.has(a); };
    const bool fits =
        std::all_of(wanted.begin(), wanted.end(), has) && std::none_of(denied.begin(), denied.end(), has);
    return fits ? detail::default_selector()(d) : -1;
  };
}

platform::platform() : platform(device().get_platform()) {}
backend platform::get_backend() const noexcept {
  return state_->kind;
}
bool platform::has_extension(const std::string&) const {
  return false;
}

bool platform::has(aspect asp) const {
  return std::all_of(state_->devices.begin(), state_->devices.end(),
                     [&](const auto& d) { return d->has(asp); });
}

std::vector<device> platform::get_devices(info::device_type type) const {
  std::vector<device> result;
  for (const auto& d : state_->devices)
    if (type == info::device_type::all || type == info::device_type::automatic || type == d->type)
      result.push_back(detail::handle_access::make<device>(d));
  return result;
}

std::vector<platform> platform::get_platforms() {
  std::vector<platform> result;
  for (const auto& p : detail::known_platforms())
    if (p->visible())
      result.push_back(detail::handle_access::make<platform>(p));
  return result;
}

template <>
std::string platform::get_info<info::platform::name>() const {
  return state_->name;
}
template <>
std::string platform::get_info<info::platform::vendor>() const {
  return state_->vendor;
}
template <>
std::string platform::get_info<info::platform::version>() const {
  return state_->version;
}

device::device() : device(detail::select_device(default_selector_v)) {}
backend device::get_backend() const noexcept {
  return state_->kind();
}
bool device::is_cpu() const {
  return state_->type == info::device_type::cpu;
}
bool device::is_gpu() const {
  return state_->type == info::device_type::gpu;
}
bool device::is_accelerator() const {
  return state_->type == info::device_type::accelerator;
}
platform device::get_platform() const {
  return detail::handle_access::make<platform>(state_->platform.lock());
}
bool device::has(aspect asp) const {
  return state_->has(asp);
}
bool device::has_extension(const std::string&) const {
  return false;
}

std::vector<device> device::get_devices(info::device_type type) {
  std::vector<device> result;
  for (const platform& p : platform::get_platforms())
    for (device& d : p.get_devices(type))
      result.push_back(std::move(d));
  return result;
}

} // namespace sycl
