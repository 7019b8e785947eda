// Processes that end with work in flight, and libraries that are unloaded with it.
#include "endings.hpp"

#include <gmock/gmock.h>

namespace {

TEST(Exit, LeavesWorkInFlightBehind) {
  for (const char* ending : {"cpu", "gpu", "exit_elsewhere", EXIT_LIBRARY})
    EXPECT_EQ(endings_of(std::string(EXIT_PROBE " ") + ending, 60), (endings{{"0: buffered", 60}})) << ending;
}

} // namespace
