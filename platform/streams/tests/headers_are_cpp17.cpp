// The headers that device code includes compile as C++17 and are usable in constant expressions.
#include <hvl/mrg32k3a_tables.h>
#include <hvl/streams_detail.h>
#include <hvl/streams_parameters.hpp>
#include <hvl/streams_record.h>
#include <hvl/streams_scaling.hpp>
#include <hvl/streams_thresholds.hpp>

using namespace hvl::streams;

static_assert(__cplusplus < 202000L, "this unit is C++17");

// lowest word, unit interval
constexpr auto unit = uniform_coefficients(word_scale::signed32, 0.0, 1.0);
static_assert(uniform_value<double>(std::int32_t{-2147483647} - 1, unit) == 0.0);
static_assert(uniform_value<double>(std::int32_t{0}, unit) == 0.5);
static_assert(uniform_value<float>(std::uint64_t{1} << 58,
                                   uniform_coefficients(word_scale::mcg59, 2.0f, 4.0f)) == 3.0f);
static_assert(uniform_value<double>(4294967087u, uniform_coefficients(word_scale::mrg32k3a, 0.0, 1.0)) < 1.0);

static_assert(floor_to<std::int32_t>(-0.5f) == -1 && floor_to<std::int32_t>(-1.0f) == -1);
static_assert(floor_to<std::int32_t>(-3e9) == -2147483647 - 1 && floor_to<std::int32_t>(3e9) == 2147483647);
static_assert(floor_to<std::int32_t>(3e9f) == 2147483520);
static_assert(floor_to<std::uint32_t>(-1.0) == 0 && floor_to<std::uint32_t>(5e9) == 4294967295u);
static_assert(floor_to<std::uint32_t>(5e9f) == 4294967040u);
static_assert(clamp_to(5.0, 1.0, 4.0) == 4.0 && clamp_to(0.0, 1.0, 4.0) == 1.0);
static_assert(integer_value<std::int32_t>(10.0f, values_on(0, 10)) == 9);
static_assert(integer_value<std::int32_t>(16777216.0f, values_on(16777217, 16777218)) == 16777217);

static_assert(mrg32k3a_jump_x[0][6] == mrg32k3a_m1 - 810728);

int main() {}
