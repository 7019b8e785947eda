// From the end of OpenCL events to the end of a command.
#pragma once

#include "opencl_native.hpp"

namespace sycl::detail::opencl {

/// Starts `ends`, an external command, and ends it when all of the events have ended. Errors of the events go to the
/// command's sink.
void end_after(const std::vector<cl_event>& events, std::shared_ptr<command> ends);

} // namespace sycl::detail::opencl
