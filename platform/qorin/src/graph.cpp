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
    forget_complete_readers();
    readers.push_back(c);
    return;
  }
  for (const auto& reader : readers)
    c->add_dependency(reader);
  readers.clear();
  writer = c;
}

/// Readers mostly end in their order; those that do not are looked for when the list has doubled.
void buffer_users::forget_complete_readers() {
  while (!readers.empty() && readers.front()->complete())
    readers.pop_front();
  if (readers.size() < crowded_)
    return;
  readers.erase(
      std::remove_if(readers.begin(), readers.end(), [](const auto& reader) { return reader->complete(); }),
      readers.end());
  crowded_ = 2 * readers.size() + 16;
}

std::vector<std::shared_ptr<command>> buffer_users::all() const {
  std::vector<std::shared_ptr<command>> result(readers.begin(), readers.end());
  if (writer)
    result.push_back(writer);
  return result;
}

} // namespace sycl::detail
