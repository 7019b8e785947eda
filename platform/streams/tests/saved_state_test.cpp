// Saved states: files written whole or not at all, and loaders that refuse everything that was not saved
// here.
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "hvl/streams_record.h"
#include "support.hpp"

namespace hvl::streams::test {
namespace {

namespace fs = std::filesystem;

class saved_states : public each_engine {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "saved-state-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string path(const char* name) const { return (folder_ / name).string(); }

  static std::vector<unsigned char> content(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static void write(const std::string& name, const std::vector<unsigned char>& bytes) {
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  static void seal(std::vector<unsigned char>& state) {
    const auto sum = crc32(0, state.data(), static_cast<uInt>(state.size() - 4));
    for (std::size_t i = 0; i < 4; ++i)
      state[state.size() - 4 + i] = static_cast<unsigned char>(sum >> (8 * i));
  }
  static int load(const std::vector<unsigned char>& state) {
    vqs_stream stream = nullptr;
    const int status = vqsLoadStreamM_64(&stream, state.data());
    EXPECT_EQ(stream != nullptr, status == VQS_STATUS_OK);
    if (stream != nullptr)
      vqsDeleteStream_64(&stream);
    return status;
  }

  fs::path folder_;
};

TEST_P(saved_states, files_hold_the_same_bytes_as_memory_and_come_back) {
  owned_stream stream(id());
  stream.bits(5);
  const std::string name = path("state");
  ASSERT_EQ(vqsSaveStreamF_64(stream, name.c_str()), VQS_STATUS_OK);
  EXPECT_EQ(content(name), stream.saved());
  vqs_stream handle = nullptr;
  ASSERT_EQ(vqsLoadStreamF_64(&handle, name.c_str()), VQS_STATUS_OK);
  owned_stream loaded = owned_stream::adopt(handle);
  expect_equal(loaded.bits(700), stream.bits(700));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1) << "a temporary file was left behind";
}

TEST_P(saved_states, a_failed_save_keeps_the_old_file) {
  owned_stream stream(id());
  EXPECT_EQ(vqsSaveStreamF_64(stream, path("no/such/folder").c_str()), VQS_STATUS_FILE_MISSING);
  EXPECT_EQ(vqsSaveStreamF_64(stream, "/dev/full"), VQS_STATUS_FILE_WRITE);
  EXPECT_EQ(vqsSaveStreamF_64(stream, nullptr), VQS_STATUS_NULL_POINTER);
  const std::string name = path("state");
  ASSERT_EQ(vqsSaveStreamF_64(stream, name.c_str()), VQS_STATUS_OK);
  ASSERT_EQ(::chmod(name.c_str(), 0640), 0);
  ASSERT_EQ(::symlink("state", path("link").c_str()), 0);
  const auto before = content(name);
  stream.bits(1);
  ASSERT_EQ(vqsSaveStreamF_64(stream, path("link").c_str()), VQS_STATUS_OK);
  EXPECT_NE(content(name), before);
  EXPECT_TRUE(fs::is_symlink(path("link"))) << "saving through a link replaced the link";
  EXPECT_EQ(fs::status(name).permissions(), fs::perms(0640));
}

TEST_P(saved_states, a_disk_that_fills_up_leaves_the_old_file) {
  owned_stream stream(id());
  const std::string name = path("state");
  ASSERT_EQ(vqsSaveStreamF_64(stream, name.c_str()), VQS_STATUS_OK);
  const auto before = content(name);
  stream.bits(1);
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{20, limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const int status = vqsSaveStreamF_64(stream, name.c_str());
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(status, VQS_STATUS_FILE_WRITE);
  EXPECT_EQ(content(name), before);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1) << "a temporary file was left behind";
}

TEST_P(saved_states, names_that_others_have_left_behind_are_passed_over) {
  owned_stream stream(id());
  const std::string stem = path("state") + ".tmp-" + std::to_string(::getpid()) + "-";
  for (int serial = 0; serial < 200; ++serial)
    write(stem + std::to_string(serial), {'x'});
  ASSERT_EQ(vqsSaveStreamF_64(stream, path("state").c_str()), VQS_STATUS_OK);
  EXPECT_EQ(content(path("state")), stream.saved());
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 201);
}

TEST_P(saved_states, the_longest_names_and_links_to_nothing_work) {
  owned_stream stream(id());
  const std::string longest = path(std::string(255, 'n').c_str());
  ASSERT_EQ(vqsSaveStreamF_64(stream, longest.c_str()), VQS_STATUS_OK);
  EXPECT_EQ(content(longest), stream.saved());
  EXPECT_EQ(vqsSaveStreamF_64(stream, path(std::string(256, 'n').c_str()).c_str()), VQS_STATUS_FILE_OPEN);

  fs::create_directory(path("other"));
  ASSERT_EQ(::symlink("other/second", path("first").c_str()), 0);
  ASSERT_EQ(::symlink("state", path("other/second").c_str()), 0);
  ASSERT_EQ(vqsSaveStreamF_64(stream, path("first").c_str()), VQS_STATUS_OK);
  EXPECT_TRUE(fs::is_symlink(path("first")) && fs::is_symlink(path("other/second")));
  EXPECT_EQ(content(path("other/state")), stream.saved());
}

// In a child process, as only there the superuser can be left.
template <class Body>
int exit_status_without_privileges(Body body) {
  const pid_t child = ::fork();
  if (child == 0)
    ::_exit(::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0) ? 200 : body());
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? -WEXITSTATUS(status) : 1;
}

TEST_P(saved_states, permissions_are_those_of_the_file) {
  owned_stream stream(id());
  const auto old_content = std::vector<unsigned char>(5000, 'x');
  const auto save = [&](const char* name) {
    return exit_status_without_privileges([&] { return -vqsSaveStreamF_64(stream, path(name).c_str()); });
  };
  write(path("read-only"), old_content);
  write(path("free"), old_content);
  fs::permissions(path("read-only"), fs::perms(0444));
  fs::permissions(path("free"), fs::perms(0666));
  fs::permissions(folder_, fs::perms(0777));
  EXPECT_EQ(save("read-only"), VQS_STATUS_FILE_PERMISSION);
  EXPECT_EQ(content(path("read-only")), old_content);

  fs::permissions(folder_, fs::perms(0555));
  EXPECT_EQ(save("new"), VQS_STATUS_FILE_PERMISSION);
  const int on_a_full_disk = exit_status_without_privileges([&] {
    const rlimit small{20, 20};
    std::signal(SIGXFSZ, SIG_IGN);
    return ::setrlimit(RLIMIT_FSIZE, &small) != 0 ? 200 : -vqsSaveStreamF_64(stream, path("free").c_str());
  });
  EXPECT_EQ(on_a_full_disk, VQS_STATUS_FILE_WRITE);
  EXPECT_EQ(content(path("free")), old_content);
  EXPECT_EQ(save("free"), VQS_STATUS_OK); // the folder takes no new file, but this one may be written
  EXPECT_EQ(content(path("free")), stream.saved());

  fs::permissions(path("free"), fs::perms(0000));
  EXPECT_EQ(exit_status_without_privileges([&] {
              vqs_stream loaded = nullptr;
              return -vqsLoadStreamF_64(&loaded, path("free").c_str());
            }),
            VQS_STATUS_FILE_PERMISSION);
  fs::permissions(folder_, fs::perms(0755));
}

TEST_P(saved_states, every_flipped_bit_is_refused) {
  const auto state = owned_stream(id()).saved();
  for (std::size_t bit = 0; bit < 8 * state.size(); ++bit) {
    auto damaged = state;
    damaged[bit / 8] = static_cast<unsigned char>(damaged[bit / 8] ^ (1u << bit % 8));
    ASSERT_NE(load(damaged), VQS_STATUS_OK) << "bit " << bit;
  }
}

TEST_P(saved_states, files_of_a_wrong_size_or_origin_are_refused) {
  const auto state = owned_stream(id()).saved();
  const std::string name = path("state");
  vqs_stream stream = nullptr;
  for (std::size_t size = 0; size < state.size(); size += size < 40 ? 1 : 97) {
    write(name, {state.begin(), state.begin() + static_cast<std::ptrdiff_t>(size)});
    ASSERT_EQ(vqsLoadStreamF_64(&stream, name.c_str()), VQS_STATUS_STATE_SIZE) << size;
  }
  for (const std::size_t extra : {1u, 4u, 100'000u}) {
    auto longer = state;
    longer.resize(state.size() + extra);
    write(name, longer);
    ASSERT_EQ(vqsLoadStreamF_64(&stream, name.c_str()), VQS_STATUS_STATE_SIZE) << extra;
  }
  write(name, std::vector<unsigned char>(state.size(), 'x'));
  EXPECT_EQ(vqsLoadStreamF_64(&stream, name.c_str()), VQS_STATUS_STATE_FORMAT);
  EXPECT_EQ(vqsLoadStreamF_64(&stream, path("absent").c_str()), VQS_STATUS_FILE_MISSING);
  EXPECT_EQ(vqsLoadStreamF_64(&stream, folder_.c_str()), VQS_STATUS_FILE_READ);
  EXPECT_EQ(stream, nullptr);
}

TEST_P(saved_states, sealed_states_with_another_header_are_refused) {
  const auto state = owned_stream(id()).saved();
  const auto with = [&](std::size_t byte, unsigned char value) {
    auto changed = state;
    changed[byte] = value;
    seal(changed);
    return load(changed);
  };
  EXPECT_EQ(with(0, state[0]), VQS_STATUS_OK);
  EXPECT_EQ(with(0, 'X'), VQS_STATUS_STATE_FORMAT);
  EXPECT_EQ(with(4, 0), VQS_STATUS_STATE_FORMAT);
  EXPECT_EQ(with(4, 3), VQS_STATUS_STATE_FORMAT);
  EXPECT_EQ(with(11, 0x7F), VQS_STATUS_STATE_FORMAT);
  EXPECT_EQ(with(12, static_cast<unsigned char>(state[12] + 4)), VQS_STATUS_STATE_SIZE);
}

TEST_P(saved_states, states_of_version_1_still_load) {
  owned_stream stream(id());
  stream.bits(5);
  auto state = stream.saved();
  ASSERT_EQ(state[4], 2);
  state[4] = 1;
  if (id() == VQS_ENGINE_MRG32K3A) { // had no substreams
    state[12] = 24;
    state.erase(state.begin() + 40, state.begin() + 52);
  }
  seal(state);
  vqs_stream handle = nullptr;
  ASSERT_EQ(vqsLoadStreamM_64(&handle, state.data()), VQS_STATUS_OK);
  owned_stream loaded = owned_stream::adopt(handle);
  EXPECT_EQ(loaded.saved(), stream.saved());
  write(path("state"), state);
  ASSERT_EQ(vqsLoadStreamF_64(&handle, path("state").c_str()), VQS_STATUS_OK);
  vqsDeleteStream_64(&handle);
}

TEST_P(saved_states, sealed_states_with_a_field_out_of_range_are_refused) {
  auto state = owned_stream(id()).saved();
  const auto fill = [&](std::size_t first, std::size_t bytes, unsigned char value) {
    for (std::size_t i = 0; i < bytes; ++i)
      state[16 + first + i] = value;
    seal(state);
    return load(state);
  };
  switch (id()) {
  case VQS_ENGINE_PHILOX4X32X10:
    EXPECT_EQ(fill(24, 1, 4), VQS_STATUS_OK);
    EXPECT_EQ(fill(24, 1, 5), VQS_STATUS_STATE_RANGE);
    break;
  case VQS_ENGINE_ARS5:
    EXPECT_EQ(fill(32, 1, 4), VQS_STATUS_OK);
    EXPECT_EQ(fill(32, 1, 5), VQS_STATUS_STATE_RANGE);
    break;
  case VQS_ENGINE_MRG32K3A:
    EXPECT_EQ(fill(12, 12, 0), VQS_STATUS_STATE_RANGE); // second component all zero
    EXPECT_EQ(fill(12, 12, 1), VQS_STATUS_OK);
    EXPECT_EQ(fill(4, 4, 0xFF), VQS_STATUS_STATE_RANGE); // not below the modulus
    EXPECT_EQ(fill(4, 4, 0x01), VQS_STATUS_OK);
    EXPECT_EQ(fill(24, 1, 5), VQS_STATUS_OK);          // five substreams
    EXPECT_EQ(fill(32, 1, 1), VQS_STATUS_STATE_RANGE); // a row without values has steps
    EXPECT_EQ(fill(28, 1, 4), VQS_STATUS_OK);
    EXPECT_EQ(fill(32, 1, 3), VQS_STATUS_STATE_RANGE); // no value takes three
    EXPECT_EQ(fill(32, 1, 2), VQS_STATUS_OK);
    EXPECT_EQ(fill(28, 1, 5), VQS_STATUS_STATE_RANGE); // all five have given theirs
    break;
  case VQS_ENGINE_MCG31M1:
    EXPECT_EQ(fill(0, 4, 0), VQS_STATUS_STATE_RANGE);
    EXPECT_EQ(fill(0, 4, 0x7F), VQS_STATUS_OK);
    EXPECT_EQ(fill(0, 4, 0xFF), VQS_STATUS_STATE_RANGE);
    EXPECT_EQ(fill(0, 4, 0x7F), VQS_STATUS_OK);
    EXPECT_EQ(fill(4, 4, 0), VQS_STATUS_STATE_RANGE);
    break;
  case VQS_ENGINE_MCG59:
    EXPECT_EQ(fill(0, 8, 0), VQS_STATUS_STATE_RANGE);
    EXPECT_EQ(fill(0, 8, 0x07), VQS_STATUS_OK);
    EXPECT_EQ(fill(8, 8, 0x06), VQS_STATUS_STATE_RANGE); // an even multiplier
    EXPECT_EQ(fill(8, 8, 0xFF), VQS_STATUS_STATE_RANGE);
    break;
  case VQS_ENGINE_MT19937:
  case VQS_ENGINE_SFMT19937:
    EXPECT_EQ(fill(2497, 1, 0x03), VQS_STATUS_STATE_RANGE); // position 624 + 256
    EXPECT_EQ(fill(2497, 1, 0x00), VQS_STATUS_OK);
    EXPECT_EQ(fill(0, 2496, 0x00), VQS_STATUS_STATE_RANGE); // no word set
    break;
  case VQS_ENGINE_MT2203:
    EXPECT_EQ(fill(276, 1, 70), VQS_STATUS_STATE_RANGE); // the position
    EXPECT_EQ(fill(276, 1, 69), VQS_STATUS_OK);
    EXPECT_EQ(fill(0, 1, 0xFF), VQS_STATUS_OK); // five bits of the first word are no part of the state
    EXPECT_EQ(fill(276, 1, 0), VQS_STATUS_STATE_RANGE); // but of its first output
    EXPECT_EQ(fill(276, 1, 69), VQS_STATUS_OK);
    EXPECT_EQ(fill(1, 275, 0), VQS_STATUS_OK); // three bits are left
    EXPECT_EQ(fill(0, 1, 0x1F), VQS_STATUS_STATE_RANGE);
    EXPECT_EQ(fill(0, 1, 0x20), VQS_STATUS_OK);
    for (const std::size_t at : {280u, 284u, 288u}) // the parameters of another member
      EXPECT_EQ(fill(at, 4, 0x5A), VQS_STATUS_STATE_RANGE);
    break;
  case VQS_ENGINE_WICHMANN_HILL:
    for (const std::size_t at : {0u, 12u, 16u, 28u}) { // of the states and the multipliers
      EXPECT_EQ(fill(at, 4, 0), VQS_STATUS_STATE_RANGE);
      EXPECT_EQ(fill(at, 3, 0xFF), VQS_STATUS_STATE_RANGE); // 2^24 - 1
      EXPECT_EQ(fill(at, 3, 0x01), VQS_STATUS_OK);
    }
    break;
  case VQS_ENGINE_R250:
    EXPECT_EQ(fill(1000, 1, 250), VQS_STATUS_STATE_RANGE); // the position
    EXPECT_EQ(fill(1000, 1, 249), VQS_STATUS_OK);
    EXPECT_EQ(fill(40 * 4, 210 * 4, 0x55), VQS_STATUS_OK);
    EXPECT_EQ(fill(30 * 4, 10 * 4, 0x55), VQS_STATUS_STATE_RANGE); // 31 words cannot span 32 bits
    break;
  case VQS_ENGINE_SOBOL:
  case VQS_ENGINE_NIEDERREITER:
    EXPECT_EQ(fill(0, 4, 0xFF), VQS_STATUS_OK); // the last point
    EXPECT_EQ(fill(4, 1, 11), VQS_STATUS_STATE_RANGE);
    EXPECT_EQ(fill(4, 1, 10), VQS_STATUS_OK);
    EXPECT_EQ(fill(9, 1, 0x60), VQS_STATUS_STATE_RANGE); // 24587 dimensions
    EXPECT_EQ(fill(9, 1, 0x12), VQS_STATUS_OK);
    EXPECT_EQ(fill(8, 2, 0), VQS_STATUS_STATE_RANGE);
    EXPECT_EQ(fill(8, 1, 11), VQS_STATUS_OK);
    EXPECT_EQ(fill(12, 1, 1), VQS_STATUS_STATE_SIZE); // the caller's numbers, which are not there
    EXPECT_EQ(fill(12, 1, 2), VQS_STATUS_STATE_RANGE);
    break;
  default:
    FAIL() << "an engine without cases of its own";
  }
}

TEST_P(saved_states, random_damage_never_builds_a_stream_out_of_range) {
  const auto state = owned_stream(id()).saved();
  std::mt19937 random(static_cast<std::uint32_t>(id()));
  for (int round = 0; round < 3000; ++round) {
    auto damaged = state;
    for (std::uint32_t hits = 1 + random() % 8; hits != 0; --hits)
      damaged[16 + random() % (state.size() - 20)] = static_cast<unsigned char>(random());
    seal(damaged);
    vqs_stream handle = nullptr;
    if (vqsLoadStreamM_64(&handle, damaged.data()) != VQS_STATUS_OK)
      continue;
    owned_stream loaded = owned_stream::adopt(handle);
    EXPECT_EQ(loaded.saved(), damaged);
    loaded.bits(3);
  }
}

HVL_STREAMS_FOR_EACH_ENGINE(saved_states);

// Of words[0] only the top bit belongs to the sequence, except where it is the next output.
TEST(mt19937_records, the_first_word_of_a_block_is_one_that_a_twist_gives) {
  for (const std::uint32_t seed : {1u, 2u, 3u, 4u, 5u}) {
    owned_stream stream(VQS_ENGINE_MT19937, seed);
    stream.bits(1);
    auto& record = *static_cast<vqs_mt19937_record*>(static_cast<vqs_stream>(stream));
    const std::uint32_t first = record.words[0];
    for (int bit = 0; bit < 31; ++bit) {
      vqs_stream copy = nullptr;
      record.words[0] = first ^ 1u << bit;
      record.position = 0;
      ASSERT_EQ(vqsCopyStream_64(&copy, stream), VQS_STATUS_STATE_RANGE) << bit;
      record.position = 1; // the word is used
      ASSERT_EQ(vqsCopyStream_64(&copy, stream), VQS_STATUS_OK) << bit;
      vqsDeleteStream_64(&copy);
    }
    record.words[0] = first;
    record.position = 0;
    EXPECT_EQ(owned_stream(stream).saved(), stream.saved());
  }
}

} // namespace
} // namespace hvl::streams::test
