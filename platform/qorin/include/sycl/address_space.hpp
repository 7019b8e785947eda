// Where a pointer points to, as part of its type. On this runtime every space is the host's one memory; the
// spaces keep a program honest for devices where they differ.
#pragma once

namespace sycl {

namespace access {

enum class address_space : int { global_space, local_space, private_space, generic_space };

enum class decorated : int { no, yes, legacy [[deprecated]] }; // the last is a name only

} // namespace access

template <typename ElementType, access::address_space Space, access::decorated DecorateAddress>
class multi_ptr;

} // namespace sycl
