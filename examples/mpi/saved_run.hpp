// What a rank needs to go on after it was killed: how many of its batches are done, what they gave, and its engine.
#pragma once

#include <kestro/hvl/rng.hpp>

#include "job.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace mpi_example {

// A file of each rank in `folder`; without a folder nothing is kept. `run` spells everything that the numbers depend on,
// and a file that another run left is refused.
class saved_run {
 public:
  saved_run(const std::string& folder, const std::string& program, const std::string& run, const job& mine)
      : rank_(mine.rank), run_(program + " " + run + ", rank " + std::to_string(mine.rank) + " of " +
                               std::to_string(mine.ranks) + "\n") {
    if (!folder.empty())
      file_ = folder + "/" + program + "." + std::to_string(mine.rank) + ".state";
  }

  // Written beside and renamed, so that a rank that is killed here leaves the file as it was.
  template <class Engine, class Tally>
  void save(Engine& engine, std::uint64_t done, const std::vector<Tally>& tallies) const {
    static_assert(std::is_trivially_copyable_v<Tally>);
    if (file_.empty())
      return;
    std::vector<unsigned char> state(static_cast<std::size_t>(kestro::hvl::rng::get_state_size(engine)));
    kestro::hvl::rng::save_state(engine, state.data());

    const std::string beside = file_ + ".new";
    std::ofstream to(beside, std::ios::binary);
    to << run_;
    for (const std::uint64_t size : {done, std::uint64_t{tallies.size()}, std::uint64_t{state.size()}})
      write(to, &size, sizeof size);
    write(to, tallies.data(), tallies.size() * sizeof(Tally));
    write(to, state.data(), state.size());
    to.close();
    if (!to)
      throw std::runtime_error(beside + " cannot be written");
    std::filesystem::rename(beside, file_);
  }

  // Leaves everything as it is where nothing was saved.
  template <class Engine, class Tally>
  void load(const sycl::queue& queue, Engine& engine, std::uint64_t& done,
            std::vector<Tally>& tallies) const {
    if (file_.empty() || !std::filesystem::exists(file_))
      return;
    std::ifstream from(file_, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(from)), std::istreambuf_iterator<char>());
    if (bytes.compare(0, run_.size(), run_) != 0)
      throw std::runtime_error(file_ + " was saved by another run: " + bytes.substr(0, bytes.find('\n')));
    std::uint64_t sizes[3]{}; // batches done, tallies, bytes of the engine's state
    const char* at = bytes.data() + run_.size();
    const std::size_t rest = bytes.size() - run_.size();
    if (rest >= sizeof sizes)
      std::memcpy(sizes, at, sizeof sizes);
    if (std::max(sizes[1], sizes[2]) > rest || rest != sizeof sizes + sizes[1] * sizeof(Tally) + sizes[2])
      throw std::runtime_error(file_ + " is damaged");
    at += sizeof sizes;
    done = sizes[0];
    tallies.resize(sizes[1]);
    std::memcpy(tallies.data(), at, sizes[1] * sizeof(Tally));
    at += sizes[1] * sizeof(Tally);
    engine = kestro::hvl::rng::load_state<Engine>(queue, reinterpret_cast<const unsigned char*>(at));
    std::fprintf(stderr, "rank %d goes on after %llu batches\n", rank_,
                 static_cast<unsigned long long>(done));
  }

  // When the result is out on all ranks.
  void remove() const {
    MPI_Barrier(MPI_COMM_WORLD);
    if (!file_.empty())
      std::filesystem::remove(file_);
  }

 private:
  static void write(std::ofstream& to, const void* bytes, std::size_t count) {
    to.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  }

  int rank_;
  std::string run_, file_;
};

} // namespace mpi_example
