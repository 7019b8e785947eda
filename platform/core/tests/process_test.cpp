// What depends on the environment or on the end of a process, seen through the probe program.
#include <hvl/core.h>

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

const std::string probe = CORE_PROBE;

std::string run(const std::string& environment, const std::string& verbs) {
  FILE* pipe = ::popen(("env -u HVL_ISA -u HVL_VERBOSE -u HVL_VERBOSE_OUTPUT_FILE " + environment + " " +
                        probe + " " + verbs + " 2>&1")
                           .c_str(),
                       "r");
  std::string output;
  for (int next = std::fgetc(pipe); next != EOF; next = std::fgetc(pipe))
    output += static_cast<char>(next);
  EXPECT_EQ(::pclose(pipe), 0) << output;
  return output;
}

class scratch_file {
 public:
  scratch_file()
      : path_(std::filesystem::temp_directory_path() / ("hvl_core_" + std::to_string(::getpid()))) {
    std::filesystem::remove(path_);
  }
  ~scratch_file() { std::filesystem::remove(path_); }

  std::string name() const { return path_.string(); }

  std::string text() const {
    std::ifstream file(path_);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path path_;
};

TEST(Environment, SetsTheTracingSwitch) {
  EXPECT_EQ(run("", "mode file"), "0\n<>\n");
  EXPECT_EQ(run("HVL_VERBOSE=1 HVL_VERBOSE_OUTPUT_FILE=trace.txt", "mode file"), "1\n<trace.txt>\n");
  EXPECT_EQ(run("HVL_VERBOSE=2", "mode"), "2\n");
  EXPECT_EQ(run("HVL_VERBOSE=", "mode"), "0\n");
  for (const char* wrong : {"3", "-1", "yes", "12345678901"})
    EXPECT_THAT(run(std::string("HVL_VERBOSE=") + wrong, "mode"), ContainsRegex("WARNING: .*\n0\n$"))
        << wrong;
}

TEST(Environment, SetsTheInstructionSet) {
  const int best = hvl_serv_isa_supported(HVL_ISA_AVX512) ? HVL_ISA_AVX512
                   : hvl_serv_isa_supported(HVL_ISA_AVX2) ? HVL_ISA_AVX2
                                                          : HVL_ISA_SCALAR;
  EXPECT_EQ(run("", "isa"), std::to_string(best) + "\n");
  EXPECT_EQ(run("HVL_ISA=scalar", "isa"), "0\n");
  for (int isa : {HVL_ISA_AVX2, HVL_ISA_AVX512})
    EXPECT_EQ(run(std::string("HVL_ISA=") + hvl_serv_isa_name(isa), "isa"),
              hvl_serv_isa_supported(isa) ? std::to_string(isa) + "\n" : "-1\n");
  EXPECT_EQ(run("HVL_ISA=sse9", "isa force-scalar isa automatic isa"), "-1\n0\n-1\n");
  EXPECT_EQ(run("HVL_ISA=avx512-and-much-more-than-that", "isa"), "-1\n");
}

TEST(Header, IsPrintedOnceAndGoesWhereTraceLinesGo) {
  const std::string line =
      "HVL_VERBOSE Kestro HVL RNG " HVL_CORE_VERSION " instruction set:scalar interface:7\n";
  EXPECT_EQ(run("HVL_ISA=scalar", "header header"), line);

  const scratch_file trace;
  EXPECT_EQ(run("HVL_ISA=scalar HVL_VERBOSE_OUTPUT_FILE=" + trace.name(), "header header"), "");
  EXPECT_EQ(trace.text(), line);

  EXPECT_EQ(run("HVL_ISA=scalar HVL_VERBOSE_OUTPUT_FILE=/no/such/folder/trace", "header"),
            "HVL_VERBOSE WARNING: unable to open output file. Print to STDOUT\n" + line);
}

TEST(CleanUp, RunsOncePerFunctionLastFirstAtExit) {
  EXPECT_EQ(run("", "cleanups cleanups"), "second\nfirst\n");
}

TEST(Append, KeepsLinesWholeBetweenThreadsAndProcesses) {
  const scratch_file file;
  const std::string second = probe + " append " + file.name() + " & ";
  ASSERT_EQ(std::system((second + second + "wait").c_str()), 0);
  std::ifstream lines(file.name());
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    ASSERT_EQ(line.size(), 6001u) << "line " << count;
    ASSERT_EQ(line.find_first_not_of('0', 5999), line[5999] == '0' ? 6000u : 5999u) << "line " << count;
  }
  EXPECT_EQ(count, 2u * 4u * 200u);
}

} // namespace
