#pragma once

#include <sycl/sycl.hpp>

#include "service/device_facts.hpp"

/// The process-wide caches from native handles to SYCL objects: the same handles always give the same object,
/// so that memory and queues made on it stay compatible. References hold until the library's clean-up
/// (kestro/hvl/interop.h). The native objects belong to the caller and must live as long. What the SYCL
/// runtime throws when an object cannot be made passes through; a later call tries again.
namespace kestro::hvl::gpu {

/// `handle` is the native context, `second_handle` the native device, of which `*device` is made.
sycl::context& lookup_and_cache_qorin_context(void* handle, void* second_handle, hvl_gpu_backend_t backend,
                                              sycl::device* device);

/// `handle` is the native device, `queue_handle` the native queue; the queue is in order and profiled as that
/// one is.
sycl::queue& lookup_and_cache_qorin_queue(void* handle, hvl_gpu_backend_t backend, sycl::context context,
                                          void* queue_handle);

struct queue_and_context {
  sycl::queue& queue;
  sycl::context& context;
};

/// Those of an OpenMP interop object. One without a native queue gets a profiled queue of its own, in order
/// if the object says so. Throws `invalid_argument` for what is no interop object, or lacks a device or a
/// context.
queue_and_context lookup_and_cache_qorin_queue_and_context(void* interop);

} // namespace kestro::hvl::gpu
