#include "graph.hpp"

#include <algorithm>

namespace sycl::detail {

std::mutex& graph_mutex() {
  static std::mutex mutex;
  return mutex;
}

void buffer_users::enter(const std::shared_ptr<command>& c, access_mode mode) {
  c->add_dependency(writer);
  if (mode == access_mode::read) {
    if (readers.size() == readers.capacity()) // complete readers go before the list grows
      readers.erase(
          std::remove_if(readers.begin(), readers.end(), [](const auto& r) { return r->complete(); }),
          readers.end());
    readers.push_back(c);
    return;
  }
  for (const auto& reader : readers)
    c->add_dependency(reader);
  readers.clear();
  writer = c;
}

std::vector<std::shared_ptr<command>> buffer_users::all() const {
  std::vector<std::shared_ptr<command>> result = readers;
  if (writer)
    result.push_back(writer);
  return result;
}

} // namespace sycl::detail
