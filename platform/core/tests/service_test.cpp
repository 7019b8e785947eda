// What one process can see of the core service.
#include <hvl/core.h>

#include "comma_locale.hpp"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

TEST(BoundedText, CutsAtTheRoomAndKeepsCursorAndRoomInStep) {
  char buffer[10];
  std::memset(buffer, '#', sizeof buffer);
  char* cursor = buffer;
  std::size_t room = 7;
  EXPECT_EQ(hvl_serv_sprintf_char_s(&cursor, &room, "%s-%d", "ab", 3), 4);
  EXPECT_EQ(cursor, buffer + 4);
  EXPECT_EQ(room, 3u);
  EXPECT_EQ(hvl_serv_sprintf_char_s(&cursor, &room, "%d", 123456), 3);
  EXPECT_EQ(room, 0u);
  EXPECT_EQ(hvl_serv_sprintf_char_s(&cursor, &room, "more"), 0);
  EXPECT_STREQ(buffer, "ab-3123");
  EXPECT_EQ(std::string(buffer + 8, 2), "##");
  EXPECT_EQ(hvl_serv_sprintf_char_s(nullptr, &room, "x"), HVL_SERV_BAD_ARGUMENT);
  EXPECT_EQ(hvl_serv_sprintf_char_s(&cursor, nullptr, "x"), HVL_SERV_BAD_ARGUMENT);
}

TEST(Print, IsTheSameInEveryLocaleAndLeavesItAlone) {
  const comma_locale comma;
  ::setenv("LOCPATH", comma.folder().c_str(), 1);
  const locale_t locale = ::newlocale(LC_ALL_MASK, comma.name(), nullptr);
  ASSERT_NE(locale, nullptr);
  const locale_t before = ::uselocale(locale);
  char own[8], buffer[16];
  std::snprintf(own, sizeof own, "%.1f", 1.5);
  char* cursor = buffer;
  std::size_t room = sizeof buffer - 1;
  hvl_serv_sprintf_char_s(&cursor, &room, "%.2fms", 10.71);
  CaptureStdout();
  hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "%.1f", 2.5);
  hvl_serv_fprintf_s(stdout, "%.1f", 3.5);
  const std::string printed = GetCapturedStdout();
  EXPECT_EQ(::uselocale(before), locale);
  ::freelocale(locale);
  ::unsetenv("LOCPATH");
  EXPECT_STREQ(own, "1,5") << "the test's locale writes no comma";
  EXPECT_STREQ(buffer, "10.71ms");
  EXPECT_EQ(printed, "2.53.5");
}

TEST(Getenv, ReportsTheWholeLengthAndAlwaysTerminates) {
  ::setenv("HVL_CORE_TEST_VALUE", "abcdef", 1);
  char buffer[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(hvl_serv_getenv("HVL_CORE_TEST_VALUE", buffer, sizeof buffer), 6);
  EXPECT_STREQ(buffer, "abc");
  EXPECT_EQ(hvl_serv_getenv("HVL_CORE_TEST_VALUE", nullptr, 0), 6);
  ::unsetenv("HVL_CORE_TEST_VALUE");
  EXPECT_EQ(hvl_serv_getenv("HVL_CORE_TEST_VALUE", buffer, sizeof buffer), -1);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(hvl_serv_getenv(nullptr, buffer, sizeof buffer), -1);
}

TEST(Printing, GoesToTheStreamOfItsKindAndReportsBytes) {
  CaptureStdout();
  CaptureStderr();
  EXPECT_EQ(hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "plain %d\n", 1), 8);
  EXPECT_EQ(hvl_serv_print_text(HVL_SERV_PRINT_WARNING, "warned %d\n", 2), 9);
  EXPECT_GT(hvl_serv_print(HVL_SERV_PRINT_PLAIN, 3, "omp_get_interop_int"), 0);
  EXPECT_GT(hvl_serv_print(HVL_SERV_PRINT_WARNING, 1449), 0);
  EXPECT_EQ(hvl_serv_print(HVL_SERV_PRINT_WARNING, 4711), HVL_SERV_BAD_ARGUMENT);
  EXPECT_EQ(GetCapturedStdout(), "plain 1\nKestro HVL ERROR: symbol omp_get_interop_int cannot be found\n");
  EXPECT_EQ(GetCapturedStderr(), "warned 2\nKestro HVL ERROR: too many clean-up functions are registered\n"
                                 "Kestro HVL ERROR: there is no message number 4711\n");
}

TEST(Printing, KeepsTheOrderOfWhatTheStreamHadBuffered) {
  CaptureStdout();
  std::fputs("buffered ", stdout);
  hvl_serv_fprintf_s(stdout, "direct\n");
  EXPECT_EQ(GetCapturedStdout(), "buffered direct\n");
}

TEST(Printing, WorksOnStreamsWithoutADescriptorAndReportsRefusals) {
  char* memory = nullptr;
  std::size_t bytes = 0;
  FILE* stream = ::open_memstream(&memory, &bytes);
  EXPECT_EQ(hvl_serv_fprintf_s(stream, "%s", "text"), 4);
  EXPECT_EQ(hvl_serv_fclose(stream), 0);
  EXPECT_STREQ(memory, "text");
  std::free(memory);

  FILE* full = hvl_serv_fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  EXPECT_EQ(hvl_serv_fprintf_s(full, "x"), HVL_SERV_IO_ERROR);
  hvl_serv_fclose(full);
  EXPECT_EQ(hvl_serv_fprintf_s(nullptr, "x"), HVL_SERV_BAD_ARGUMENT);
  EXPECT_EQ(hvl_serv_fclose(nullptr), HVL_SERV_BAD_ARGUMENT);
  EXPECT_EQ(hvl_serv_fopen(nullptr, "a"), nullptr);
  EXPECT_EQ(hvl_serv_fopen("/no/such/folder/file", "a"), nullptr);
}

TEST(TracingSwitch, IsSetAtRunTimeAndThroughThePointer) {
  ASSERT_GE(hvl_serv_set_verbose(2), 0);
  EXPECT_EQ(*hvl_serv_verbose_mode(), 2);
  *hvl_serv_verbose_mode() = 1;
  EXPECT_EQ(hvl_serv_set_verbose(0), 1);
  for (int wrong : {-1, 3})
    EXPECT_EQ(hvl_serv_set_verbose(wrong), HVL_SERV_BAD_ARGUMENT);
  EXPECT_EQ(*hvl_serv_verbose_mode(), 0);
}

TEST(TracingSwitch, FileNamesStayReadableWhileOthersAreSet) {
  hvl_serv_set_verbose_output_file("first");
  const char* first = hvl_serv_verbose_output_file_mode();
  std::thread setter([] {
    for (int round = 0; round != 2000; ++round)
      hvl_serv_set_verbose_output_file(round % 2 != 0 ? "even" : "odd");
  });
  for (int round = 0; round != 2000; ++round) {
    const std::string name = hvl_serv_verbose_output_file_mode();
    ASSERT_TRUE(name == "first" || name == "even" || name == "odd") << name;
  }
  setter.join();
  EXPECT_STREQ(first, "first");
  EXPECT_EQ(hvl_serv_set_verbose_output_file(nullptr), HVL_SERV_OK);
  EXPECT_STREQ(hvl_serv_verbose_output_file_mode(), "");
}

TEST(Lock, ExcludesThreads) {
  static hvl_serv_lock_t lock = HVL_SERV_LOCK_INIT;
  constexpr int rounds = 20000;
  long count = 0;
  const auto add = [&] {
    for (int round = 0; round != rounds; ++round) {
      hvl_serv_lock(&lock);
      ++count;
      hvl_serv_unlock(&lock);
    }
  };
  std::thread first(add), second(add), third(add);
  first.join();
  second.join();
  third.join();
  EXPECT_EQ(count, 3L * rounds);
}

TEST(Memory, IsAlignedAndRefusesWhatCannotBe) {
  for (std::size_t alignment : {std::size_t{0}, std::size_t{1}, std::size_t{64}, std::size_t{4096}}) {
    void* memory = hvl_serv_malloc(100, alignment);
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % (alignment == 0 ? 64 : alignment), 0u);
    std::memset(memory, 0x5a, 100);
    hvl_serv_free(memory);
  }
  void* empty = hvl_serv_malloc(0, 64);
  EXPECT_NE(empty, nullptr);
  hvl_serv_free(empty);
  EXPECT_EQ(hvl_serv_malloc(8, 48), nullptr);
  hvl_serv_free(nullptr);
}

TEST(InstructionSet, IsForcedAndRefusedAndReleased) {
  const int automatic = hvl_serv_isa();
  ASSERT_EQ(hvl_serv_set_isa(HVL_ISA_SCALAR), HVL_SERV_OK);
  EXPECT_EQ(hvl_serv_isa(), HVL_ISA_SCALAR);
  for (int unknown : {-2, 3, 99})
    EXPECT_EQ(hvl_serv_set_isa(unknown), HVL_SERV_BAD_ISA);
  EXPECT_EQ(hvl_serv_isa(), HVL_ISA_SCALAR);
  EXPECT_EQ(hvl_serv_set_isa(-1), HVL_SERV_OK);
  EXPECT_EQ(hvl_serv_isa(), automatic);
  EXPECT_STREQ(hvl_serv_isa_name(HVL_ISA_AVX512), "avx512");
  EXPECT_EQ(hvl_serv_isa_name(3), nullptr);
  EXPECT_EQ(hvl_serv_isa_supported(HVL_ISA_SCALAR), 1);
  EXPECT_EQ(hvl_serv_isa_supported(3), 0);
}

TEST(Clock, MovesForward) {
  const double before = hvl_serv_dsecnd();
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  EXPECT_GE(hvl_serv_dsecnd() - before, 0.002);
}

} // namespace
