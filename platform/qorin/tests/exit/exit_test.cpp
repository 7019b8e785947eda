// Processes and libraries that end while commands run or wait to run.
#include "endings.hpp"

#include <gmock/gmock.h>

namespace {

endings seen(const std::string& ending, int runs) {
  return endings_of(EXIT_PROBE " " + ending, runs);
}

TEST(exit, leaves_work_in_flight_behind) {
  for (const char* ending : {"return_cpu", "return_gpu", "exit_elsewhere", "exit_in_a_task",
                             "exit_in_a_kernel", "exit_in_a_range"})
    EXPECT_EQ(seen(ending, 40), (endings{{"0: buffered", 40}})) << ending;
  EXPECT_EQ(seen("quick_exit", 20), (endings{{"0: buffered", 20}}));
}

TEST(exit, does_not_wait_for_what_sleeps_nor_start_what_follows) {
  EXPECT_EQ(seen("blocked", 8), (endings{{"0: buffered", 8}}));
}

TEST(exit, completes_what_static_objects_wait_for) {
  EXPECT_EQ(seen("waited_for_at_the_end", 40), (endings{{"0: buffered 200", 40}}));
  EXPECT_EQ(seen("joined_at_the_end", 40), (endings{{"0: buffered 300", 40}}));
}

TEST(exit, of_a_library_that_works_comes_with_the_process) {
  EXPECT_EQ(seen("unload " EXIT_LIBRARY, 40), (endings{{"0: buffered still there", 40}}));
}

} // namespace
