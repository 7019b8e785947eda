// What the package's Python code is made of.
#include "engine.hpp"
#include "tools/hvl-rng/catalogue.hpp"
#include "tools/hvl-rng/device_names.hpp"
#include "word_source.hpp"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

void translate(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const kestro::hvl::device_bad_alloc& failed) {
    PyErr_SetString(PyExc_MemoryError, failed.what());
  } catch (const kestro::hvl::computation_error& failed) {
    PyErr_SetString(PyExc_RuntimeError, failed.what());
  } catch (const kestro::hvl::exception& refused) {
    PyErr_SetString(PyExc_ValueError, refused.what());
  }
}

py::list engines() {
  py::list all;
  for (const hvl_rng::engine_entry& one : hvl_rng::engines())
    all.append(py::make_tuple(one.name, one.is_quasi_random));
  return all;
}

py::list distributions() {
  py::list all;
  for (const hvl_rng::distribution_entry& one : hvl_rng::distributions())
    all.append(py::make_tuple(one.name, one.type_name, one.method, one.is_default_method));
  return all;
}

py::list devices() {
  py::list all;
  for (const sycl::device& device : sycl::device::get_devices())
    all.append(py::make_tuple(hvl_rng::kind_of(device), device.get_info<sycl::info::device::name>()));
  return all;
}

} // namespace

PYBIND11_MODULE(_native, module) {
  using kestro::python::engine;
  using kestro::python::engine_start;
  using kestro::python::word_source;
  using without_python = py::call_guard<py::gil_scoped_release>;

  py::register_exception_translator(translate);
  module.def("engines", engines);
  module.def("distributions", distributions);
  module.def("devices", devices);

  py::class_<engine>(module, "Engine")
      .def(py::init([](std::size_t index, const std::string& device, decltype(engine_start::seed) seed,
                       decltype(engine_start::member) member, std::optional<std::uint32_t> substreams) {
             return std::make_unique<engine>(index, device, engine_start{seed, member, substreams});
           }),
           without_python())
      .def_static("load",
                  [](std::size_t index, const std::string& device, const py::bytes& state) {
                    return std::make_unique<engine>(index, device, static_cast<std::string>(state));
                  })
      .def(
          "copy", [](const engine& self) { return std::make_unique<engine>(self); }, without_python())
      .def("generate", &engine::generate)
      .def("skip_ahead", &engine::skip_ahead, without_python())
      .def("leapfrog", &engine::leapfrog, without_python())
      .def("save", &engine::save);

  py::class_<word_source>(module, "WordSource")
      .def(py::init<const engine&>())
      .def("connect", &word_source::connect)
      .def("state", &word_source::state)
      .def("set_state", &word_source::set_state);
}
