// The registry of clean-up functions, to the end of processes.
#include <hvl/core.h>
#include <kestro/hvl/interop.h>

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

std::string calls;
void* received = nullptr;

template <char Name>
void note(void* table) {
  calls += Name;
  received = table;
}

class Destructors : public testing::Test {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    calls.clear();
    received = nullptr;
  }
};

TEST_F(Destructors, RunOnceLastFirst) {
  hvl_sycl_register_destructor(note<'a'>);
  hvl_sycl_register_destructor(note<'b'>);
  hvl_sycl_register_destructor(nullptr);
  hvl_sycl_register_destructor(note<'c'>);
  hvl_sycl_destructor();
  EXPECT_EQ(calls, "cba");
  EXPECT_NE(received, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(received) % 64, 0u);
  hvl_sycl_destructor();
  EXPECT_EQ(calls, "cba");
}

TEST_F(Destructors, StartAgainAfterwards) {
  hvl_sycl_init_destructor();
  hvl_sycl_init_destructor();
  hvl_sycl_destructor();
  EXPECT_EQ(calls, "");
  hvl_sycl_register_destructor(note<'a'>);
  hvl_sycl_init_destructor();
  hvl_sycl_destructor();
  EXPECT_EQ(calls, "a");
}

TEST_F(Destructors, TakeThirtyTwoFromManyThreads) {
  std::thread workers[4];
  for (std::thread& worker : workers)
    worker = std::thread([] {
      for (int round = 0; round != 8; ++round)
        hvl_sycl_register_destructor(note<'x'>);
    });
  for (std::thread& worker : workers)
    worker.join();
  hvl_sycl_destructor();
  EXPECT_EQ(calls, std::string(32, 'x'));
}

void say(void*) {
  std::fputc('.', stderr);
}

TEST_F(Destructors, EndTheProcessAtTheThirtyThird) {
  EXPECT_EXIT(
      {
        for (int count = 0; count != 33; ++count)
          hvl_sycl_register_destructor(say);
        std::_Exit(0);
      },
      testing::ExitedWithCode(1),
      testing::MatchesRegex("Kestro HVL ERROR: too many clean-up functions are registered\n\\.{32}"));
}

TEST_F(Destructors, RunOnceAtExit) {
  EXPECT_EXIT(
      {
        hvl_sycl_register_destructor(say);
        std::exit(0);
      },
      testing::ExitedWithCode(0), testing::MatchesRegex("\\."));
  EXPECT_EXIT(
      {
        hvl_sycl_register_destructor(say);
        hvl_sycl_destructor();
        std::exit(0);
      },
      testing::ExitedWithCode(0), testing::MatchesRegex("\\."));
}

std::string run(const std::string& command) {
  FILE* const pipe = ::popen(command.c_str(), "r");
  std::string output;
  for (int next = std::fgetc(pipe); next != EOF; next = std::fgetc(pipe))
    output += static_cast<char>(next);
  EXPECT_EQ(::pclose(pipe), 0) << output;
  return output;
}

// Also when the core library, which knows the registry, is not unloaded with it.
TEST_F(Destructors, RunWhenTheLibraryIsUnloaded) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "a sanitizer keeps the library loaded, or calls its atexit functions after it is gone";
#endif
  const std::string probe = UNLOAD_PROBE " " HVL_RNG_LIBRARY;
  EXPECT_EQ(run(probe), "closing\nsecond\nfirst\nunloaded\n");
  EXPECT_EQ(run(probe + " " HVL_CORE_LIBRARY), "closing\nsecond\nfirst\nunloaded\n");
}

} // namespace
