#pragma once

#include <cstdint>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include "service/spin_word.hpp"

namespace kestro::hvl::gpu {

/// Two native handles.
struct handle_pair {
  void* first;
  void* second;

  bool operator==(const handle_pair&) const = default;
};

struct handle_pair_hash {
  std::size_t operator()(const handle_pair& key) const noexcept {
    return reinterpret_cast<std::uintptr_t>(key.first) ^ reinterpret_cast<std::uintptr_t>(key.second);
  }
};

/// One object per pair of native handles. Lookups run side by side; creation is exclusive.
template <class Object>
class handle_cache {
 public:
  /// The object of `key`, made by `create()` if there is none. When that throws nothing is kept. The
  /// reference holds until `clear`.
  template <class Create>
  Object& find_or_create(const handle_pair& key, const Create& create) {
    {
      const std::shared_lock reading(word_);
      if (Object* const found = find(key))
        return *found;
    }
    const std::lock_guard writing(word_);
    if (Object* const found = find(key)) // made by another thread meanwhile
      return *found;
    return objects_.emplace(key, create()).first->second;
  }

  /// Destroys the objects, outside the lock: that may take long, and may call back.
  void clear() {
    map released;
    const std::lock_guard writing(word_);
    released.swap(objects_);
  }

 private:
  using map = std::unordered_map<handle_pair, Object, handle_pair_hash>;

  Object* find(const handle_pair& key) {
    const auto found = objects_.find(key);
    return found == objects_.end() ? nullptr : &found->second;
  }

  spin_word word_;
  map objects_;
};

} // namespace kestro::hvl::gpu
