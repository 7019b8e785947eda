#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <sycl/sycl.hpp>

/// Call tracing: what surrounds a traced call, and the lines that it prints. `traced_call` puts the pieces
/// together. The mode is read again at every decision, since another thread may change it.
namespace kestro::hvl::gpu {

/// 0: off; positive: one line per call; 2: times, too.
int verbose_mode() noexcept;

/// The tag that the header of the trace prints.
void set_verbose_gpu_iface(int iface) noexcept;

/// How many traced calls surround this point of this thread.
void verbose_depth_inc() noexcept;
void verbose_depth_dec() noexcept;

/// Keeps the event of a kernel for the device time of this thread's next trace line, in mode 2.
void verbose_register_event(const sycl::event& e);

/// Surround a USM call. In mode 2 the start waits for the dependencies and the end for the call; the
/// difference of their clocks is then in `*time`.
void verbose_usm_start(double* time, const std::vector<sycl::event>& dependencies);
void verbose_usm_end(double* time, sycl::event e);

/// Surround a buffer call: in mode 2 both wait for all that was submitted on `r`, on the device that `q`
/// serves (the default device without it), so that timing moves no data between devices.
/// T is float, double, std::int32_t, std::uint32_t or std::uint64_t.
template <class T>
void verbose_buffer_start(double* time, sycl::buffer<T, 1> r, const sycl::queue* q = nullptr);
template <class T>
void verbose_buffer_end(double* time, sycl::buffer<T, 1> r, const sycl::queue* q = nullptr);

/// Prints the trace line of a call on `q` and forgets the thread's events; the first one of the process also
/// lists the GPUs. Prints nothing inside another traced call.
void print_verbose_gpu_info(sycl::queue* q, const char* description, double host_time);

/// Appends a duration with the largest unit of which it is more than one; "nan" for none.
void print_time(char*& cursor, std::size_t& room, double seconds);

} // namespace kestro::hvl::gpu
