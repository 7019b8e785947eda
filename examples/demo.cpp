// The same random numbers on every device: speed, bits compared, moments beside the exact ones, a histogram.
// usage: demo [MILLIONS OF NUMBERS]
#include <kestro/hvl/rng.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace rng = kestro::hvl::rng;

namespace {

constexpr std::int64_t chunk = std::int64_t{1} << 24; // 64 MiB of float: larger than any cache

// One device with an engine of its own; all engines start from the same seed.
class lane {
 public:
  explicit lane(const sycl::device& device)
      : queue_(device), engine_(queue_, 20240229), values_(sycl::malloc_shared<float>(chunk, queue_)) {
    if (values_ == nullptr)
      throw std::runtime_error("no memory for the numbers");
    std::memset(values_, 0xff, chunk * sizeof(float)); // maps the pages, so that no timing pays for them
  }
  ~lane() { sycl::free(values_, queue_); }
  lane(const lane&) = delete;
  lane& operator=(const lane&) = delete;

  template <class Distribution>
  void generate(const Distribution& distribution, std::int64_t count) {
    const auto start = std::chrono::steady_clock::now();
    rng::generate(distribution, engine_, count, values_).wait();
    seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

  const float* values() const { return values_; }
  double take_seconds() { return std::exchange(seconds_, 0.0); }
  std::string name() const { return queue_.get_device().get_info<sycl::info::device::name>(); }

 private:
  sycl::queue queue_;
  rng::philox4x32x10 engine_;
  float* values_;
  double seconds_ = 0.0;
};

// Moments about the exact mean, and a histogram of [low, high).
class statistics {
 public:
  statistics(double exact_mean, double low, double high)
      : centre_(exact_mean), low_(low), width_(high - low) {}

  void add(const float* values, std::int64_t count) {
    const double per_bin = double(bins_.size()) / width_;
    for (std::int64_t i = 0; i < count; ++i) {
      const double offset = double(values[i]) - centre_;
      sum_ += offset;
      squares_ += offset * offset;
      const auto bin = static_cast<std::int64_t>(std::floor((double(values[i]) - low_) * per_bin));
      if (bin >= 0 && bin < std::int64_t(bins_.size()))
        ++bins_[std::size_t(bin)];
    }
    count_ += count;
  }

  double mean() const { return centre_ + sum_ / double(count_); }
  double variance() const { return squares_ / double(count_) - (mean() - centre_) * (mean() - centre_); }
  double standard_errors(double exact_variance) const {
    return (mean() - centre_) / std::sqrt(exact_variance / double(count_));
  }

  void draw() const {
    constexpr int columns = 60;
    const auto tallest = double(*std::max_element(bins_.begin(), bins_.end()));
    for (std::size_t bin = 0; bin < bins_.size(); ++bin) {
      const double left = low_ + width_ * double(bin) / double(bins_.size());
      std::printf("  %6.2f  ", left);
      for (int column = int(std::lround(columns * double(bins_[bin]) / tallest)); column > 0; --column)
        std::fputs("\u2588", stdout);
      std::printf(" %.2f %%\n", 100.0 * double(bins_[bin]) / double(count_));
    }
  }

 private:
  double centre_, low_, width_, sum_ = 0.0, squares_ = 0.0;
  std::int64_t count_ = 0;
  std::array<std::int64_t, 16> bins_{};
};

template <class Distribution>
bool show(const char* title, const Distribution& distribution, double exact_mean, double exact_variance,
          double low, double high, std::int64_t total, std::vector<lane*> lanes) {
  statistics all(exact_mean, low, high);
  bool same = true;
  for (std::int64_t done = 0; done < total; done += chunk) {
    const std::int64_t count = std::min(chunk, total - done);
    for (lane* one : lanes)
      one->generate(distribution, count);
    for (lane* one : lanes)
      same = same && std::memcmp(one->values(), lanes[0]->values(), std::size_t(count) * sizeof(float)) == 0;
    all.add(lanes[0]->values(), count);
  }

  std::printf("%s: %lld million numbers from philox4x32x10 on each device\n", title,
              static_cast<long long>(total / 1000000));
  for (lane* one : lanes)
    std::printf("  %-44s %8.1f million numbers a second\n", one->name().c_str(),
                double(total) * 1e-6 / one->take_seconds());
  std::printf("  bits on all %zu devices: %s\n", lanes.size(), same ? "the same" : "DIFFERENT");
  std::printf("  mean     %12.8f  exact %12.8f  (%+.2f standard errors)\n", all.mean(), exact_mean,
              all.standard_errors(exact_variance));
  std::printf("  variance %12.8f  exact %12.8f\n\n", all.variance(), exact_variance);
  all.draw();
  std::printf("\n");
  return same;
}

int run(std::int64_t total) {
  std::vector<std::unique_ptr<lane>> owned;
  std::printf("Devices found\n");
  for (const sycl::device& device : sycl::device::get_devices()) {
    const bool used = device.is_cpu() || device.is_gpu();
    std::printf("  %-44s %s, %u compute units%s\n", device.get_info<sycl::info::device::name>().c_str(),
                device.is_cpu()   ? "CPU"
                : device.is_gpu() ? "GPU"
                                  : "other",
                device.get_info<sycl::info::device::max_compute_units>(), used ? "" : " (not used)");
    if (used)
      owned.push_back(std::make_unique<lane>(device));
  }
  std::printf("\n");
  if (owned.empty())
    throw std::runtime_error("no CPU or GPU device found");
  std::vector<lane*> lanes;
  for (const auto& one : owned)
    lanes.push_back(one.get());

  const bool same_uniform =
      show("Uniform on [0, 1)", rng::uniform<float>(0.0f, 1.0f), 0.5, 1.0 / 12.0, 0.0, 1.0, total, lanes);
  const bool same_gaussian = show("Normal, mean 0, deviation 1", rng::gaussian<float>(0.0f, 1.0f), 0.0, 1.0,
                                  -4.0, 4.0, total, lanes);
  return same_uniform && same_gaussian ? EXIT_SUCCESS : EXIT_FAILURE;
}

std::int64_t millions(const char* text) {
  char* end = nullptr;
  const long number = std::strtol(text, &end, 10);
  if (end == text || *end != '\0' || number < 1 || number > 100000)
    throw std::invalid_argument("'" + std::string(text) + "' is no number of millions from 1 to 100000");
  return number;
}

} // namespace

int main(int count, char** words) {
  try {
    return run(1000000 * (count > 1 ? millions(words[1]) : 250));
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "demo: %s\n", failed.what());
    return EXIT_FAILURE;
  }
}
