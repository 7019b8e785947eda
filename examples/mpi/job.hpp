// A program on all ranks of MPI: which rank this is, which part is its own, what was asked for, and an end for all
// ranks where one fails.
#pragma once

#include <mpi.h>

#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>

namespace mpi_example {

// The command line: every option has a value, and is one of those that the program begins with.
class options {
 public:
  options(int count, char** words, std::map<std::string, std::string> defaults)
      : values_(std::move(defaults)) {
    for (int i = 1; i < count; i += 2) {
      const auto known = values_.find(words[i]);
      if (known == values_.end())
        throw std::invalid_argument(std::string(words[i]) + ": not one of" + names());
      if (i + 1 == count)
        throw std::invalid_argument(std::string(words[i]) + ": a value is needed");
      known->second = words[i + 1];
    }
  }

  const std::string& text(const std::string& name) const { return values_.at(name); }

  std::uint64_t number(const std::string& name, std::uint64_t fewest, std::uint64_t most) const {
    const std::string& text = values_.at(name);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < fewest || value > most)
      throw std::invalid_argument(name + " " + text + ": not a whole number from " + std::to_string(fewest) +
                                  " to " + std::to_string(most));
    return value;
  }

 private:
  std::string names() const {
    std::string all;
    for (const auto& [name, value] : values_)
      all += " " + name;
    return all;
  }

  std::map<std::string, std::string> values_;
};

struct job {
  int rank, ranks;

  // Of [0, n) rank r has [first_of(n, r), first_of(n, r + 1)).
  std::uint64_t first_of(std::uint64_t n, int r) const {
    const auto of = static_cast<std::uint64_t>(r), all = static_cast<std::uint64_t>(ranks);
    return n / all * of + n % all * of / all;
  }
  std::uint64_t first_of(std::uint64_t n) const { return first_of(n, rank); }
  std::uint64_t last_of(std::uint64_t n) const { return first_of(n, rank + 1); }

  // Ends this rank as a failing machine would, where `--kill RANK,BATCH` names it and the batch that it has just done.
  void fail_if_asked(const options& given, std::uint64_t batch) const {
    if (given.text("--kill") == std::to_string(rank) + "," + std::to_string(batch))
      std::raise(SIGKILL);
  }
};

// `program(job, options)` on every rank. The runtime of SYCL has threads of its own, but only this one calls MPI.
template <class Program>
int run(int count, char** words, const std::map<std::string, std::string>& defaults, Program program) {
  int provided = 0;
  if (MPI_Init_thread(&count, &words, MPI_THREAD_FUNNELED, &provided) != MPI_SUCCESS)
    return 1;
  job mine{};
  MPI_Comm_rank(MPI_COMM_WORLD, &mine.rank);
  MPI_Comm_size(MPI_COMM_WORLD, &mine.ranks);
  try {
    program(mine, options(count, words, defaults));
  } catch (const std::exception& failed) {
    // The others may wait for this rank's part for ever.
    std::fprintf(stderr, "rank %d: %s\n", mine.rank, failed.what());
    MPI_Abort(MPI_COMM_WORLD, 1);
  }
  MPI_Finalize();
  return 0;
}

} // namespace mpi_example
