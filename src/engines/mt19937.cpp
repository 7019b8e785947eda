#include "engines/mt19937.hpp"

#include <algorithm>

#include <hvl/streams_detail.h>

#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace detail {

void engine_extension<mt19937>::attach(const sycl::queue& queue, const stream_handle& stream) {
  device.reset(new mt19937_device_state(queue, stream.record<vqs_mt19937_record>()));
}

void engine_extension<mt19937>::store(const stream_handle& stream) const {
  if (!device)
    return;
  auto& record = stream.record<vqs_mt19937_record>();
  device->copy_live_words(record.words);
  record.position = gpu::mt_words;
}

void mt19937_gpu_state_to_vqs_stream(engine_base_impl<mt19937>& engine, vqs_stream stream) {
  const auto& from = engine.up_to_date_stream().record<vqs_mt19937_record>();
  auto& to = *static_cast<vqs_mt19937_record*>(stream);
  std::copy_n(from.words, gpu::mt_words, to.words);
  to.position = from.position;
}

namespace gpu {
namespace {

// Up to here stepping on the device takes less time than the polynomial of a new distance.
constexpr std::uint64_t stepping_words = std::uint64_t{1} << 22;

void skip_ahead_gpu(sycl::queue& queue, engine_base_impl<mt19937>& engine, std::uint64_t n) {
  mt19937_device_state& device = *engine.extension().device;
  const std::size_t lanes = mt19937_plan_for(queue.get_device(), 0).lanes;
  device.set_last(queue.submit([&](sycl::handler& handler) {
    handler.depends_on(device.last());
    const mt_local_words memory(sycl::range<1>(mt19937_window::capacity), handler);
    handler.parallel_for(sycl::nd_range<1>(lanes, lanes),
                         mt19937_generate<mt19937_drop>(device.ring(), nullptr, n, 0, memory, {}));
  }));
}

} // namespace

void skip_ahead(sycl::queue& queue, engine_base_impl<mt19937>& engine, std::uint64_t n) {
  if (n == 0)
    return;
  if (n <= stepping_words) {
    skip_ahead_gpu(queue, engine, n);
    return;
  }
  mt19937_device_state& device = *engine.extension().device;
  std::uint32_t words[mt_words];
  device.copy_live_words(words);
  check_stream_status(vqsMt19937Jump(words, n), "skip_ahead", "");
  device.replace_live_words(words);
}

} // namespace gpu
} // namespace detail

namespace {

constexpr auto identifier = detail::engine_traits<mt19937>::identifier;

} // namespace

mt19937::mt19937(sycl::queue queue, std::uint32_t seed)
    : engine_base(queue, detail::make_engine_impl<mt19937>(queue, identifier, std::uint64_t{seed})) {}

mt19937::mt19937(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_words<mt19937>(queue, seed)) {}

mt19937::mt19937(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<mt19937>(queue, words)) {}

void mt19937::skip_ahead(std::uint64_t num_to_skip) {
  auto& impl = detail::engine_access::impl<mt19937>(*this, "skip_ahead");
  if (impl.extension().device)
    detail::gpu::skip_ahead(queue_, impl, num_to_skip);
  else
    impl.skip_ahead(num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(mt19937)
