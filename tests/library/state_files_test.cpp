// Saved states in files and in memory: what is refused, and that a refused save leaves the old file.
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

namespace fs = std::filesystem;

class folder {
 public:
  folder() : path_(fs::temp_directory_path() / ("kestro_states_" + std::to_string(getpid()))) {
    fs::create_directory(path_);
  }
  ~folder() { fs::remove_all(path_); }
  std::string file(const char* name) const { return (path_ / name).string(); }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

std::vector<char> content(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

template <class Engine>
class state_files_test : public ::testing::Test {};
TYPED_TEST_SUITE(state_files_test, all_engines, engine_names);

TYPED_TEST(state_files_test, file_and_memory_hold_the_same_bytes) {
  const folder temporary;
  on_every_device([&](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 15);
    usm_values(bits<>(), engine, queue, 77);
    save_state(engine, temporary.file("state"));
    std::vector<unsigned char> memory(static_cast<std::size_t>(get_state_size(engine)));
    save_state(engine, memory.data());
    const auto bytes = content(temporary.file("state"));
    ASSERT_EQ(bytes.size(), memory.size());
    EXPECT_EQ(std::memcmp(bytes.data(), memory.data(), memory.size()), 0);
    TypeParam loaded = load_state<TypeParam>(queue, temporary.file("state"));
    expect_same(usm_values(bits<>(), loaded, queue, 700), usm_values(bits<>(), engine, queue, 700));
  });
}

TYPED_TEST(state_files_test, damaged_and_foreign_states_are_refused) {
  const folder temporary;
  auto queue = devices().front().queue;
  TypeParam engine = seeded<TypeParam>(queue, 15);
  const std::string name = temporary.file("state");
  save_state(engine, name);
  const auto good = content(name);
  const std::string refused =
      "kestro::hvl::rng::load_state: computation error: failed to load state from the file: " + name + ": ";
  const std::string size = refused + "the saved state has a wrong size";
  const auto loading = [&](const std::vector<char>& bytes) {
    std::ofstream(name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return refusal<computation_error>([&] { load_state<TypeParam>(queue, name); });
  };
  ASSERT_EQ(loading(good), "no exception");
  for (std::size_t i = 0; i < good.size(); i += 1 + good.size() / 64) {
    auto damaged = good;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x10);
    const std::string text = loading(damaged);
    EXPECT_TRUE(text.starts_with(refused) && text.size() > refused.size()) << "byte " << i << ": " << text;
  }
  auto damaged = good;
  damaged[20] = static_cast<char>(damaged[20] ^ 0x10);
  EXPECT_EQ(loading(damaged), refused + "the saved state's checksum does not match");
  EXPECT_EQ(loading({good.begin(), good.end() - 1}), size);
  EXPECT_EQ(loading({}), size);
  auto longer = good;
  longer.push_back(0);
  EXPECT_EQ(loading(longer), size);
  fs::remove(name);
  EXPECT_EQ(refusal<computation_error>([&] { load_state<TypeParam>(queue, name); }),
            refused + "there is no such file or folder");

  using other = std::conditional_t<std::is_same_v<TypeParam, mcg59>, mcg31m1, mcg59>;
  other foreign(queue, 1);
  std::vector<unsigned char> memory(static_cast<std::size_t>(get_state_size(foreign)));
  save_state(foreign, memory.data());
  EXPECT_EQ(refusal<computation_error>([&] { load_state<TypeParam>(queue, memory.data()); }),
            "kestro::hvl::rng::load_state: computation error: failed to load state from the memory: "
            "the state of another engine");
  save_state(foreign, name);
  EXPECT_EQ(refusal<computation_error>([&] { load_state<TypeParam>(queue, name); }),
            refused + "the state of another engine");
}

TYPED_TEST(state_files_test, a_failed_save_says_so) {
  auto queue = devices().front().queue;
  TypeParam engine = seeded<TypeParam>(queue, 15);
  EXPECT_EQ(refusal<computation_error>([&] { save_state(engine, "/nonexistent/folder/state"); }),
            "kestro::hvl::rng::save_state: computation error: failed to save state to the file: "
            "/nonexistent/folder/state: there is no such file or folder");
  EXPECT_EQ(refusal<computation_error>([&] { save_state(engine, static_cast<unsigned char*>(nullptr)); }),
            "kestro::hvl::rng::save_state: computation error: failed to save state to the memory: "
            "a required pointer is null");
}

} // namespace
} // namespace kestro::hvl::rng::test
