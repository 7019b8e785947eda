#include "service/demangle.hpp"

#include <cxxabi.h>

namespace kestro::hvl::gpu {

demangle::demangle(const std::type_info& type)
    : mangled_(type.name()), text_(abi::__cxa_demangle(mangled_, nullptr, nullptr, nullptr)) {}

} // namespace kestro::hvl::gpu
