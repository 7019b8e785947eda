// The tracing switch, the trace header and the clock of trace lines.
#include <hvl/core.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <new>
#include <set>
#include <string>

namespace {

int mode_from_environment() noexcept {
  char value[8];
  const int length = hvl_serv_getenv("HVL_VERBOSE", value, sizeof value);
  if (length <= 0)
    return 0;
  if (length == 1 && value[0] >= '0' && value[0] <= '2')
    return value[0] - '0';
  hvl_serv_print_text(HVL_SERV_PRINT_WARNING,
                      "HVL_VERBOSE WARNING: HVL_VERBOSE is not 0, 1 or 2; tracing stays off\n");
  return 0;
}

int verbose_mode = mode_from_environment();

// Names live for ever, so that a thread may still read the one that another thread replaces; each is kept
// once. Never destroyed: a clean-up at exit may still trace.
class file_names {
 public:
  file_names() { set(std::getenv("HVL_VERBOSE_OUTPUT_FILE")); }

  char* current() const noexcept { return current_.load(std::memory_order_acquire); }

  void set(const char* name) {
    const std::lock_guard lock(mutex_);
    const std::string& kept = *names_.emplace(name == nullptr ? "" : name).first;
    current_.store(const_cast<char*>(kept.c_str()), std::memory_order_release);
  }

 private:
  std::mutex mutex_;
  std::set<std::string> names_;
  std::atomic<char*> current_{nullptr};
};

file_names& names() {
  static file_names* const instance = new file_names;
  return *instance;
}

// The same road as every trace line: the file, or standard output when there is none or it cannot be opened.
void write_trace_line(const char* line) noexcept {
  const char* name = hvl_serv_verbose_output_file_mode();
  if (*name != '\0') {
    if (FILE* file = hvl_serv_fopen(name, "a")) {
      hvl_serv_fprintf_s(file, "%s", line);
      hvl_serv_fclose(file);
      return;
    }
    hvl_serv_print_text(HVL_SERV_PRINT_WARNING, "HVL_VERBOSE WARNING: %s\n",
                        "unable to open output file. Print to STDOUT");
  }
  hvl_serv_print_text(HVL_SERV_PRINT_PLAIN, "%s", line);
}

} // namespace

int* hvl_serv_verbose_mode(void) {
  return &verbose_mode;
}

int hvl_serv_set_verbose(int mode) {
  if (mode < 0 || mode > 2)
    return HVL_SERV_BAD_ARGUMENT;
  return std::atomic_ref(verbose_mode).exchange(mode);
}

char* hvl_serv_verbose_output_file_mode(void) {
  return names().current();
}

int hvl_serv_set_verbose_output_file(const char* name) {
  try {
    names().set(name);
    return HVL_SERV_OK;
  } catch (const std::bad_alloc&) {
    return HVL_SERV_BAD_ARGUMENT;
  }
}

void hvl_serv_print_verbose_header(int iface) {
  static std::atomic_flag printed;
  if (printed.test(std::memory_order_relaxed) || printed.test_and_set())
    return;
  const char* isa = hvl_serv_isa_name(hvl_serv_isa());
  char line[160];
  std::snprintf(line, sizeof line, "HVL_VERBOSE Kestro HVL RNG %s instruction set:%s interface:%d\n",
                HVL_CORE_VERSION, isa == nullptr ? "unknown" : isa, iface);
  write_trace_line(line);
}

double hvl_serv_dsecnd(void) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
