#pragma once

#include <cstdint>

#include <hvl/streams_scaling.hpp>
#include <sycl/sycl.hpp>

#include "framework/stream.hpp"

/// What an engine supplies to the framework. Each engine specialises these in src/engines.
namespace kestro::hvl::rng::detail {

using ::hvl::streams::word_scale;

/// Of the engine, on every device:
///
///   static constexpr const char* name;
///   static constexpr std::int32_t identifier;   of the stream library
///   static constexpr bool has_uniform_bits;     offers the distribution `uniform_bits`
template <class Engine>
struct engine_traits;

/// Of its generation in kernels; the state is trivially copyable and passed by value:
///
///   using word_type = ...;
///   static constexpr word_scale scale;
///   static constexpr std::uint32_t raw(word_type);   its 32 bits
///   static constexpr int blocks_per_item;            blocks of four words that one work-item makes
///   using record_type = ...;                         of its streams
///   struct state;
///   static state capture(const stream_handle&);
///   struct cursor { void next(word_type (&words)[4]); };
///   static cursor at(const state&, std::int64_t item);
template <class Engine>
struct engine_kernel;

/// What an engine keeps on a device beside its stream; most keep nothing.
///
///   attach: builds it, once the stream is there (GPU backend only)
///   store: brings it back into the stream
template <class Engine>
struct engine_extension {
  void attach(const sycl::queue&, const stream_handle&) {}
  void store(const stream_handle&) const {}
};

} // namespace kestro::hvl::rng::detail
