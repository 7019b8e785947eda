// SYCL 2020: the whole interface.
#pragma once

#define SYCL_LANGUAGE_VERSION 202011
#define SYCL_IMPLEMENTATION_QORIN 1

#include <sycl/accessor.hpp>
#include <sycl/backend.hpp>
#include <sycl/buffer.hpp>
#include <sycl/context.hpp>
#include <sycl/device.hpp>
#include <sycl/device_library.hpp>
#include <sycl/device_selector.hpp>
#include <sycl/event.hpp>
#include <sycl/exception.hpp>
#include <sycl/functional.hpp>
#include <sycl/group.hpp>
#include <sycl/group_functions.hpp>
#include <sycl/h_item.hpp>
#include <sycl/handler.hpp>
#include <sycl/host_accessor.hpp>
#include <sycl/id.hpp>
#include <sycl/info.hpp>
#include <sycl/interop_handle.hpp>
#include <sycl/is_device_copyable.hpp>
#include <sycl/item.hpp>
#include <sycl/kernel_bundle.hpp>
#include <sycl/kernel_handler.hpp>
#include <sycl/local_accessor.hpp>
#include <sycl/nd_item.hpp>
#include <sycl/nd_range.hpp>
#include <sycl/platform.hpp>
#include <sycl/property_list.hpp>
#include <sycl/queue.hpp>
#include <sycl/range.hpp>
#include <sycl/reduction.hpp>
#include <sycl/span.hpp>
#include <sycl/usm.hpp>
