// Whole traces of whole programs; only times, pointers and this machine's facts are masked.
#include "comma_locale.hpp"
#include "service/portability.hpp"
#include "traced_device.hpp"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <unistd.h>

namespace {

using testing::HasSubstr;
using testing::Not;

const std::string probe = TRACE_PROBE;

const std::string header = "HVL_VERBOSE Kestro HVL RNG VERSION instruction set:ISA interface:0\n";
#ifdef KESTRO_HVL_HAS_ZERLIN
const std::string backend = "Zerlin";
#else
const std::string backend = "Unknown_backend";
#endif
const std::string no_gpus = "\n";
const std::string gpus =
    has_gpu() ? "HVL_VERBOSE Detected GPU0 Unknown_GPU Backend:" + backend + " VE:# Stack:1 maxWGsize:#\n\n"
              : no_gpus;
const std::string on = traced_device_label();
const std::string warning = "HVL_VERBOSE WARNING: unable to open output file. Print to STDOUT\n";
const std::string generate = "HVL_VERBOSE kestro::hvl::rng::generate ";

std::string usm_line(const std::string& times) {
  return generate +
         "USM call with parameters distribution = kestro::hvl::rng::uniform<float, "
         "kestro::hvl::rng::uniform_method::standard>, engine = kestro::hvl::rng::philox4x32x10, n = "
         "1234567, r = POINTER " +
         times + "\n";
}

std::string buffer_line(const std::string& times) {
  return generate +
         "Buffer call with parameters distribution = kestro::hvl::rng::uniform<int, "
         "kestro::hvl::rng::uniform_method::standard>, engine = kestro::hvl::rng::mcg59, n = 1234567 " +
         times + "\n";
}

// Times, pointers and facts of this machine.
std::string masked(std::string text) {
  const std::pair<const char*, const char*> masks[] = {
      {"r = 0x[0-9a-f]+", "r = POINTER"},
      {"(host|device):[0-9]+(\\.[0-9][0-9](s|ms|us)|ns)", "$1:TIME"},
      {"RNG [0-9.]+ instruction set:[a-z0-9]+", "RNG VERSION instruction set:ISA"},
      {"VE:[0-9]+", "VE:#"},
      {"maxWGsize:[0-9]+", "maxWGsize:#"}};
  for (const auto& [pattern, mask] : masks)
    text = std::regex_replace(text, std::regex(pattern), mask);
  return text;
}

class scratch_file {
 public:
  explicit scratch_file(const std::string& name)
      : path_(std::filesystem::temp_directory_path() /
              ("hvl_service_" + name + "_" + std::to_string(::getpid()))) {
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

struct outcome {
  std::string output; // standard output, masked
  std::string errors; // standard error
};

outcome run(const std::string& environment, const std::string& verbs) {
  const scratch_file output("output"), errors("errors");
  const std::string command = "env -u HVL_VERBOSE -u HVL_VERBOSE_OUTPUT_FILE " + environment + " " + probe +
                              " " + verbs + " > " + output.name() + " 2> " + errors.name();
  EXPECT_EQ(std::system(command.c_str()), 0) << command << "\n" << errors.text();
  return {masked(output.text()), errors.text()};
}

TEST(Trace, IsSilentInMode0) {
  EXPECT_EQ(run("", "gpu usm buffer cpu usm buffer").output, "");
}

TEST(Trace, NamesEveryCallInMode1) {
  EXPECT_EQ(run("HVL_VERBOSE=1", "gpu usm buffer").output,
            header + gpus + usm_line("host:nan device:nan" + on) + buffer_line("host:nan device:nan" + on));
}

TEST(Trace, TimesEveryCallInMode2) {
  EXPECT_EQ(run("HVL_VERBOSE=2", "gpu usm buffer").output, header + gpus +
                                                               usm_line("host:TIME device:TIME" + on) +
                                                               buffer_line("host:TIME device:TIME" + on));
  EXPECT_EQ(run("HVL_VERBOSE=2", "untimed-gpu usm buffer").output,
            header + gpus + usm_line("host:TIME device:nan" + on) + buffer_line("host:TIME device:nan" + on));
}

TEST(Trace, CountsAllKernelsOfACall) {
  if (!has_gpu())
    GTEST_SKIP() << "no GPU: a call on a CPU device is one host task";
  const scratch_file trace("trace");
  const double last_kernel_ms =
      std::stod(run("HVL_VERBOSE=2 HVL_VERBOSE_OUTPUT_FILE=" + trace.name(), "segmented").errors);
  const std::string text = trace.text();
  std::smatch device;
  ASSERT_TRUE(std::regex_search(text, device, std::regex(" device:([0-9.]+)(m?)s" + on))) << text;
  const double unit_ms = device[2].length() != 0 ? 1 : 1000;
  EXPECT_GT(std::stod(device[1]) * unit_ms, last_kernel_ms + 0.01 * unit_ms)
      << "the text has two digits behind the point";
}

// The listing is of the backend that is traced first, once and for all.
TEST(Trace, KnowsOnlyTheGpusOfTheFirstBackend) {
  if (!has_gpu())
    GTEST_SKIP() << "no GPU";
  EXPECT_EQ(run("HVL_VERBOSE=1", "gpu usm cpu buffer gpu buffer").output,
            header + gpus + usm_line("host:nan device:nan" + on) + buffer_line("host:nan device:nan") +
                buffer_line("host:nan device:nan" + on));
  EXPECT_EQ(run("HVL_VERBOSE=1", "cpu usm gpu buffer").output,
            header + no_gpus + usm_line("host:nan device:nan") + buffer_line("host:nan device:nan"));
}

TEST(Trace, LeavesTheProgramTheSame) {
  for (const char* device : {"gpu", "cpu"}) {
    const std::string verbs = std::string(device) + " usm buffer refused usm";
    const std::string plain = run("", verbs).errors;
    EXPECT_THAT(plain, HasSubstr("kestro::hvl::rng::generate: invalid argument: r\n"));
    EXPECT_THAT(plain, HasSubstr("uniform_bits distribution and mcg31m1 engine combination"));
    for (const char* mode : {"HVL_VERBOSE=1", "HVL_VERBOSE=2"})
      EXPECT_EQ(run(mode, verbs).errors, plain) << mode << " on " << device;
  }
}

TEST(Trace, HasNoLineForACallThatThrows) {
  for (const char* mode : {"1", "2"}) {
    const std::string output = run(std::string("HVL_VERBOSE=") + mode, "refused usm").output;
    EXPECT_THAT(output, HasSubstr(header + gpus + generate + "USM call"));
    EXPECT_THAT(output, HasSubstr("n = 1234567"));
    for (const char* refused : {"n = -1", "n = 1,", "n = 2 ", "mcg31m1"})
      EXPECT_THAT(output, Not(HasSubstr(refused)));
  }
}

TEST(Trace, WritesCountsInPlainDigitsWhateverTheLocale) {
  EXPECT_EQ(run("HVL_VERBOSE=1", "grouped-digits buffer").output,
            header + gpus + buffer_line("host:nan device:nan" + on));
}

// A probe that could not have the locale would write the same numbers with a point.
TEST(Trace, WritesTimesWithAPointWhateverTheLocale) {
  const comma_locale comma;
  const std::string environment =
      "HVL_VERBOSE=2 LOCPATH=" + comma.folder().string() + " LC_ALL=" + comma.name();
  const outcome traced = run(environment, "own-locale gpu usm");
  EXPECT_EQ(traced.output, header + gpus + usm_line("host:TIME device:TIME" + on));
  EXPECT_THAT(traced.errors, HasSubstr(","));
}

TEST(Trace, GoesToTheFile) {
  const scratch_file trace("trace");
  EXPECT_EQ(run("HVL_VERBOSE=1 HVL_VERBOSE_OUTPUT_FILE=" + trace.name(), "usm").output, "");
  EXPECT_EQ(masked(trace.text()), header + gpus + usm_line("host:nan device:nan" + on));
}

TEST(Trace, WarnsPerPieceAndFallsBackWhenTheFileCannotBeOpened) {
  const outcome traced = run("HVL_VERBOSE=1 HVL_VERBOSE_OUTPUT_FILE=/no/such/folder/trace", "usm buffer");
  EXPECT_EQ(traced.output,
            header + gpus + usm_line("host:nan device:nan" + on) + buffer_line("host:nan device:nan" + on));
  std::size_t warnings = 0;
  for (std::size_t at = 0; (at = traced.errors.find(warning, at)) != std::string::npos; ++at)
    ++warnings;
  EXPECT_EQ(warnings, 4u) << traced.errors; // header, listing, two calls
}

// The lines of the verb "threads" in `text`, whole; everything else must be headers and listings.
int whole_lines(const std::string& text, int processes) {
  const std::string call = generate +
                           "USM call with parameters distribution = kestro::hvl::rng::uniform<float, "
                           "kestro::hvl::rng::uniform_method::standard>, engine = "
                           "kestro::hvl::rng::philox4x32x10, n = 8, r = POINTER host:nan device:nan" +
                           on + "\n";
  std::string rest = masked(text);
  int calls = 0;
  for (std::size_t at; (at = rest.find(call)) != std::string::npos; ++calls)
    rest.erase(at, call.size());
  for (const std::string& once : {header, gpus})
    for (int process = 0; process != processes; ++process) {
      const std::size_t at = rest.find(once);
      EXPECT_NE(at, std::string::npos) << rest;
      if (at != std::string::npos)
        rest.erase(at, once.size());
    }
  EXPECT_EQ(rest, "");
  return calls;
}

TEST(Trace, KeepsLinesWholeBetweenThreads) {
  EXPECT_EQ(whole_lines(run("HVL_VERBOSE=1", "threads").output, 1), 200);
}

TEST(Trace, KeepsLinesWholeBetweenProcesses) {
  const scratch_file trace("trace");
  const std::string one =
      "HVL_VERBOSE=1 HVL_VERBOSE_OUTPUT_FILE=" + trace.name() + " " + probe + " threads & ";
  ASSERT_EQ(std::system((one + one + one + "wait").c_str()), 0);
  EXPECT_EQ(whole_lines(trace.text(), 3), 600);
}

TEST(Trace, IsUnderstoodByTheProgramThatSumsIt) {
  const scratch_file trace("trace"), table("table");
  run("HVL_VERBOSE=2 HVL_VERBOSE_OUTPUT_FILE=" + trace.name(), "gpu usm usm buffer cpu buffer");
  const std::string command =
      HVL_RNG_PROGRAM " trace-summary " + trace.name() + " > " + table.name() + " 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0);
  const std::string summed = std::regex_replace(table.text(), std::regex("[0-9]\\.[0-9]{6}"), "TIME");
  EXPECT_THAT(summed, testing::ContainsRegex(
                          "mcg59 +uniform<int, uniform_method::standard> +2 +2469134 +TIME +TIME"));
  EXPECT_THAT(summed,
              testing::ContainsRegex("philox4x32x10 +uniform<float, uniform_method::standard> +2 +2469134 "
                                     "+TIME +TIME"));
  EXPECT_THAT(summed, Not(HasSubstr("not understood")));
}

} // namespace
