// Particles through a slab, beside the known solution. Ranks share the words of one sequence by leapfrog or by blocks; every
// number of ranks and either way give the same tallies.
// usage: mpirun -n RANKS slab_transport [--cut leapfrog|blocks] [--particles N] [--save FOLDER]
#include <kestro/hvl/rng.hpp>

#include "job.hpp"
#include "saved_run.hpp"
#include "slab.hpp"

#include <algorithm>
#include <memory>

namespace rng = kestro::hvl::rng;
using namespace mpi_example;

namespace {

constexpr std::uint64_t particles_a_batch = 1 << 15;

// Whole numbers, whose sum knows no order.
struct tallies {
  std::uint64_t transmitted = 0, reflected = 0, absorbed = 0, collisions = 0;
};

// Of a row of `size` words this rank's are `count` from `first` on, `stride` apart.
struct share {
  std::uint64_t first, count, stride;

  share(const job& mine, bool by_leapfrog, std::uint64_t size) {
    const auto rank = static_cast<std::uint64_t>(mine.rank), ranks = static_cast<std::uint64_t>(mine.ranks);
    first = by_leapfrog ? rank : mine.first_of(size);
    count = by_leapfrog ? (size + ranks - 1 - rank) / ranks : mine.last_of(size) - first;
    stride = by_leapfrog ? ranks : 1;
  }
};

// Row s of the sequence has a word for each particle, which is its own whatever rank it is on and whether or not it flies.
class rows {
 public:
  // `start` stands before the word of the batch's first particle in row 0.
  rows(sycl::queue queue, const rng::mcg59& start, std::uint64_t row_words, const share& own)
      : queue_(queue), start_(start), row_words_(row_words), own_(own),
        numbers_(sycl::malloc_shared<double>(std::max(own.count, std::uint64_t{1}), queue)) {
    if (numbers_ == nullptr)
      throw std::runtime_error("no memory for the numbers");
  }
  ~rows() { sycl::free(numbers_, queue_); }
  rows(const rows&) = delete;
  rows& operator=(const rows&) = delete;

  template <class Distribution>
  const double* next(const Distribution& distribution) {
    rng::mcg59 engine = start_;
    if (own_.stride == 1) {
      engine.skip_ahead(own_.first);
    } else {
      engine.leapfrog(own_.first, own_.stride);
    }
    rng::generate(distribution, engine, static_cast<std::int64_t>(own_.count), numbers_).wait();
    start_.skip_ahead(row_words_);
    return numbers_;
  }

 private:
  sycl::queue queue_;
  rng::mcg59 start_;
  std::uint64_t row_words_;
  share own_;
  double* numbers_;
};

// Follows particles, all a flight further at a time.
void transport(rows& words, std::uint64_t count, tallies& done) {
  const rng::exponential<double> flight;
  const rng::uniform<double> zero_to_one;
  std::vector<double> depth(count, 0.0), cosine(count, 1.0);
  std::vector<std::uint64_t> flying(count), next;
  for (std::uint64_t i = 0; i < count; ++i)
    flying[i] = i;
  while (!flying.empty()) {
    const double* number = words.next(flight);
    for (const std::uint64_t i : flying)
      depth[i] += cosine[i] * number[i];
    number = words.next(zero_to_one);
    for (const std::uint64_t i : flying) {
      if (depth[i] < 0) {
        ++done.reflected;
      } else if (depth[i] >= slab::thickness) {
        ++done.transmitted;
      } else {
        ++done.collisions;
        if (number[i] >= slab::scattering) {
          ++done.absorbed;
        } else {
          cosine[i] = 2 * (number[i] / slab::scattering) - 1; // uniform again, for it is below
          next.push_back(i);
        }
      }
    }
    flying.swap(next);
    next.clear();
  }
}

void print(const tallies& all, std::uint64_t particles) {
  const slab::fates exact = slab::exact_fates();
  const auto n = double(particles);
  const auto line = [n](const char* name, std::uint64_t count, double part) {
    std::printf("%-12s %12llu  part %.6f  exact %.6f  (%+.2f standard errors)\n", name,
                static_cast<unsigned long long>(count), double(count) / n, part,
                (double(count) - n * part) / std::sqrt(n * part * (1 - part)));
  };
  line("transmitted", all.transmitted, exact.transmitted);
  line("reflected", all.reflected, exact.reflected);
  line("absorbed", all.absorbed, exact.absorbed);
  std::printf("collisions   %12llu\n", static_cast<unsigned long long>(all.collisions));
}

void program(const job& mine, const options& given) {
  const std::string& cut = given.text("--cut");
  if (cut != "leapfrog" && cut != "blocks")
    throw std::invalid_argument("--cut " + cut + ": not one of leapfrog, blocks");
  const std::uint64_t particles = given.number("--particles", 1, std::uint64_t{1} << 40);
  const std::uint64_t batches = (particles + particles_a_batch - 1) / particles_a_batch;

  sycl::queue queue;
  rng::mcg59 engine(queue, 42);
  std::uint64_t batch = 0;
  std::vector<tallies> done(1);
  const saved_run saved(given.text("--save"), "slab_transport",
                        cut + ", " + std::to_string(particles) + " particles", mine);
  saved.load(queue, engine, batch, done);
  while (batch != batches) {
    const std::uint64_t size = std::min(particles_a_batch, particles - batch * particles_a_batch);
    const share own(mine, cut == "leapfrog", size);
    // An odd distance: modulo 2^59, words that a great power of two lies between differ in their highest bits alone.
    rows words(queue, engine, particles | 1, own);
    transport(words, own.count, done.front());
    engine.skip_ahead(size);
    ++batch;
    saved.save(engine, batch, done);
    mine.fail_if_asked(given, batch);
  }

  tallies all;
  constexpr int counts = sizeof(tallies) / sizeof(std::uint64_t);
  MPI_Reduce(done.data(), &all, counts, MPI_UINT64_T, MPI_SUM, 0, MPI_COMM_WORLD);
  if (mine.rank == 0)
    print(all, particles);
  saved.remove();
}

} // namespace

int main(int count, char** words) {
  return run(count, words,
             {{"--cut", "leapfrog"}, {"--particles", "1000000"}, {"--save", ""}, {"--kill", ""}}, program);
}
