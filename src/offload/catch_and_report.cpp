#include "offload/catch_and_report.hpp"

#include <cstdio>

#include <hvl/core.h>
#include <kestro/hvl/exceptions.hpp>

namespace kestro::hvl::rng::detail::openmp {

void report(const std::exception_ptr& caught) noexcept {
  try {
    std::rethrow_exception(caught);
  } catch (const kestro::hvl::exception& e) {
    hvl_serv_fprintf_s(stderr, "KestroHVL RNG: kestro::hvl::exception: what: %s\n", e.what());
  } catch (const sycl::exception& e) {
    hvl_serv_fprintf_s(stderr, "KestroHVL RNG: sycl::exception what: %s \n", e.what());
  } catch (const std::exception& e) {
    hvl_serv_fprintf_s(stderr, "KestroHVL RNG: std::exception what: %s\n", e.what());
  } catch (...) {
    hvl_serv_fprintf_s(stderr, "KestroHVL RNG: unknown exception occured during Qorin++ call");
  }
}

} // namespace kestro::hvl::rng::detail::openmp
