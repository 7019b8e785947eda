// Kernel bundles, specialization constants, and the types that may cross to a device.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

#include <unordered_set>

#include "code_of.hpp"

namespace {

using sycl::errc;

class named;
class other;
constexpr sycl::specialization_id<int> width(5);
constexpr sycl::specialization_id<double> scale(0.5);

constexpr auto executable = sycl::bundle_state::executable;

TEST(kernel_bundles, hold_all_kernels_or_those_asked_for) {
  const sycl::queue q;
  const auto id = sycl::get_kernel_id<named>();
  const auto all = sycl::get_kernel_bundle<executable>(q.get_context());
  const auto one = sycl::get_kernel_bundle<named, executable>(q.get_context());
  EXPECT_TRUE(all.has_kernel(id) && all.has_kernel<other>() && one.has_kernel<named>(q.get_device()));
  EXPECT_FALSE(one.has_kernel<other>() || one.empty());
  EXPECT_FALSE(one.has_kernel(id, sycl::device(sycl::gpu_selector_v)));
  EXPECT_THAT(id.get_name(), testing::HasSubstr("named"));
  EXPECT_EQ((std::unordered_set{id, sycl::get_kernel_id<named>(), sycl::get_kernel_id<other>()}.size()), 2u);
  EXPECT_EQ(code_of([&] { one.get_kernel<other>(); }), errc::invalid);
  const sycl::kernel kernel = one.get_kernel(id);
  EXPECT_EQ(kernel, one.get_kernel<named>());
  EXPECT_NE(kernel, all.get_kernel(id));
  EXPECT_EQ(kernel.get_kernel_bundle(), one);
  namespace specific = sycl::info::kernel_device_specific;
  EXPECT_EQ(kernel.get_info<specific::work_group_size>(q.get_device()),
            q.get_device().get_info<sycl::info::device::max_work_group_size>());
  const sycl::device gpu(sycl::gpu_selector_v);
  EXPECT_EQ(code_of([&] { kernel.get_info<specific::private_mem_size>(gpu); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::get_kernel_bundle<executable>(q.get_context(), std::vector{gpu}); }),
            errc::invalid);
  EXPECT_EQ(
      code_of([&] { sycl::get_kernel_bundle<executable>(q.get_context(), std::vector<sycl::device>()); }),
      errc::invalid);
}

TEST(kernel_bundles, in_use_by_a_command_group_refuse_other_kernels) {
  sycl::queue q;
  const auto bundle = sycl::get_kernel_bundle<named, executable>(q.get_context());
  int ran = 0;
  q.submit([&](sycl::handler& h) {
    h.use_kernel_bundle(bundle);
    EXPECT_EQ(code_of([&] { h.single_task<other>([] {}); }), errc::kernel_not_supported);
    EXPECT_EQ(code_of([&] { h.parallel_for<other>(sycl::range<1>(1), [](sycl::id<1>) {}); }),
              errc::kernel_not_supported);
    EXPECT_EQ(code_of([&] { h.set_specialization_constant<width>(1); }), errc::invalid);
    h.single_task<named>([&ran] { ran = 1; });
  });
  q.wait();
  EXPECT_EQ(ran, 1);
  sycl::queue foreign(sycl::context(q.get_device()), q.get_device());
  foreign.submit(
      [&](sycl::handler& h) { EXPECT_EQ(code_of([&] { h.use_kernel_bundle(bundle); }), errc::invalid); });
  foreign.wait();
}

TEST(specialization_constants, reach_every_form_of_kernel_of_their_group_only) {
  sycl::queue q{sycl::property::queue::in_order()};
  std::vector<double> seen(6, -1.0);
  double* const at = seen.data();
  const auto read = [](sycl::kernel_handler k) {
    return k.get_specialization_constant<width>() * k.get_specialization_constant<scale>();
  };
  q.submit([&](sycl::handler& h) {
    h.set_specialization_constant<width>(7);
    h.set_specialization_constant<width>(8);
    EXPECT_EQ(h.get_specialization_constant<width>(), 8);
    EXPECT_EQ(h.get_specialization_constant<scale>(), 0.5);
    h.parallel_for(sycl::range<1>(2), [=](sycl::item<1> i, sycl::kernel_handler k) { at[i] = read(k); });
  });
  q.submit([&](sycl::handler& h) {
    h.set_specialization_constant<scale>(2.0);
    h.parallel_for(sycl::nd_range<1>(2, 2),
                   [=](sycl::nd_item<1> i, sycl::kernel_handler k) { at[2 + i.get_global_id(0)] = read(k); });
  });
  q.submit([&](sycl::handler& h) { h.single_task([=](sycl::kernel_handler k) { at[4] = read(k); }); });
  q.submit([&](sycl::handler& h) {
    h.set_specialization_constant<width>(3);
    h.parallel_for_work_group(sycl::range<1>(1),
                              [=](sycl::group<1>, sycl::kernel_handler k) { at[5] = read(k); });
  });
  q.wait();
  EXPECT_THAT(seen, testing::ElementsAre(4, 4, 10, 10, 2.5, 1.5));
}

struct by_bytes {
  by_bytes() = default;
  explicit by_bytes(int v) : value(v) {}
  by_bytes(const by_bytes& b) : value(b.value) {}
  by_bytes& operator=(const by_bytes& b) {
    value = b.value;
    return *this;
  }
  int value = 0;
};
struct neither {
  ~neither() {}
};

} // namespace

template <>
struct sycl::is_device_copyable<by_bytes> : std::true_type {};

namespace {

TEST(device_copyable, composes_and_opens_buffers_and_fills_to_types_of_programs) {
  using sycl::is_device_copyable_v;
  static_assert(is_device_copyable_v<int> && is_device_copyable_v<const by_bytes[2]>);
  static_assert(is_device_copyable_v<std::pair<int, by_bytes>> &&
                is_device_copyable_v<const std::tuple<by_bytes, int>>);
  static_assert(is_device_copyable_v<std::array<by_bytes, 3>> &&
                is_device_copyable_v<std::array<neither, 0>>);
  static_assert(is_device_copyable_v<std::optional<by_bytes>> &&
                is_device_copyable_v<std::variant<int, by_bytes>>);
  static_assert(!is_device_copyable_v<neither> && !is_device_copyable_v<std::pair<int, neither>>);
  std::vector<by_bytes> data(4);
  {
    sycl::queue q;
    sycl::buffer b(data);
    q.submit([&](sycl::handler& h) { h.fill(sycl::accessor(b, h, sycl::write_only), by_bytes(9)); });
  }
  EXPECT_THAT(data, testing::Each(testing::Field(&by_bytes::value, 9)));
}

} // namespace
