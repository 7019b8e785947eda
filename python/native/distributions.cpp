#include "distributions.hpp"

#include "tools/hvl-rng/distribution_traits.hpp"

#include <pybind11/numpy.h>

#include <array>
#include <string>
#include <type_traits>
#include <vector>

namespace py = pybind11;

namespace kestro::python {
namespace {

template <class T>
T read(const char* name, const py::object& value, const T&) {
  try {
    return value.cast<T>();
  } catch (const py::cast_error&) {
    PyErr_Clear();
    throw py::value_error(std::string(name) + " is not " +
                          (std::is_integral_v<T> ? "an integer of 32 bits" : "a number") + ": " +
                          py::repr(value).cast<std::string>());
  }
}

template <class T>
std::vector<T> read(const char* name, const py::object& value, const std::vector<T>&) {
  using array = py::array_t<T, py::array::c_style | py::array::forcecast>;
  const array values = array::ensure(value);
  if (!values) {
    PyErr_Clear();
    throw py::value_error(std::string(name) + " is not an array of numbers");
  }
  return std::vector<T>(values.data(), values.data() + values.size());
}

template <class Distribution>
hvl_rng::any_distribution make(const py::dict& given) {
  const Distribution defaults;
  const auto value_of = [&](const auto& parameter) {
    const auto by_default = (defaults.*parameter.accessor)();
    return given.contains(parameter.name)
               ? read(parameter.name, py::object(given[parameter.name]), by_default)
               : by_default;
  };
  return std::apply(
      [&](const auto&... parameter) {
        return hvl_rng::any_distribution(Distribution{value_of(parameter)...});
      },
      hvl_rng::distribution_traits<Distribution>::parameters);
}

template <class... Distributions>
constexpr auto makers(hvl_rng::type_list<Distributions...>) {
  return std::array{&make<Distributions>...};
}

} // namespace

hvl_rng::any_distribution make_distribution(std::size_t index, const py::dict& parameters) {
  static constexpr auto all = makers(hvl_rng::distribution_list());
  return all.at(index)(parameters);
}

} // namespace kestro::python
