// The texts of the exceptions.
#include "support.hpp"

namespace kestro::hvl::test {
namespace {

TEST(exceptions_test, compose_their_text) {
  EXPECT_STREQ(exception("", "", "").what(), "kestro::hvl");
  EXPECT_STREQ(exception("rng", "generate", "text").what(), "kestro::hvl::rng::generate: text");
  EXPECT_STREQ(exception("", "f", "").what(), "kestro::hvl::f");
  EXPECT_STREQ(invalid_argument("rng", "generate", "n").what(),
               "kestro::hvl::rng::generate: invalid argument: n");
  EXPECT_STREQ(invalid_argument("rng", "generate").what(), "kestro::hvl::rng::generate: invalid argument");
  EXPECT_STREQ(unimplemented("rng", "generate", "x").what(),
               "kestro::hvl::rng::generate: unimplemented functionality: x");
  EXPECT_STREQ(computation_error("rng", "skip_ahead", "").what(),
               "kestro::hvl::rng::skip_ahead: computation error");
}

TEST(exceptions_test, name_the_device) {
  const sycl::device device(sycl::cpu_selector_v);
  const std::string name = device.get_info<sycl::info::device::name>();
  EXPECT_EQ(unsupported_device("rng", "mt19937", device).what(),
            "kestro::hvl::rng::mt19937: unsupported device: " + name);
  EXPECT_EQ(device_bad_alloc("rng", "mt19937", device).what(),
            "kestro::hvl::rng::mt19937: cannot allocate memory on " + name);
}

TEST(exceptions_test, are_one_family) {
  EXPECT_THROW(throw invalid_argument("a", "b", "c"), exception);
  EXPECT_THROW(throw computation_error("a", "b", "c"), std::exception);
}

} // namespace
} // namespace kestro::hvl::test
