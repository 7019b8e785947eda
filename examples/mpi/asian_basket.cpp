// The price of an Asian option on a basket, by paths that are dealt to ranks in blocks of one sequence. Every number of ranks
// gives the same price, to the last bit.
// usage: mpirun -n RANKS asian_basket [--engine philox4x32x10|mrg32k3a|mt19937|sobol] [--paths N] [--save FOLDER]
#include <kestro/hvl/rng.hpp>

#include "basket.hpp"
#include "job.hpp"
#include "saved_run.hpp"

#include <algorithm>
#include <cmath>
#include <memory>

namespace rng = kestro::hvl::rng;
using namespace mpi_example;

namespace {

// Paths are added up by batches, and batches in their order, so no sum knows of ranks.
constexpr std::uint64_t paths_a_batch = 1024;
constexpr std::uint64_t batches_a_save = 8;

// Of a number of payoffs; `control` is the arithmetic one less the geometric one.
struct sums {
  double geometric = 0, arithmetic = 0, control = 0;
  double geometric_squares = 0, arithmetic_squares = 0, control_squares = 0;

  void add(const basket::payoffs& of_path) {
    const double difference = of_path.arithmetic - of_path.geometric;
    geometric += of_path.geometric;
    arithmetic += of_path.arithmetic;
    control += difference;
    geometric_squares += of_path.geometric * of_path.geometric;
    arithmetic_squares += of_path.arithmetic * of_path.arithmetic;
    control_squares += difference * difference;
  }
  void add(const sums& batch) {
    geometric += batch.geometric;
    arithmetic += batch.arithmetic;
    control += batch.control;
    geometric_squares += batch.geometric_squares;
    arithmetic_squares += batch.arithmetic_squares;
    control_squares += batch.control_squares;
  }
};

// All ranks' batches on rank 0, in their order.
std::vector<sums> gather(const job& mine, std::uint64_t batches, const std::vector<sums>& own) {
  constexpr std::uint64_t doubles = sizeof(sums) / sizeof(double);
  std::vector<int> counts, places;
  for (int rank = 0; rank < mine.ranks; ++rank) {
    places.push_back(static_cast<int>(doubles * mine.first_of(batches, rank)));
    counts.push_back(static_cast<int>(doubles * mine.first_of(batches, rank + 1)) - places.back());
  }
  std::vector<sums> all(mine.rank == 0 ? batches : 0);
  MPI_Gatherv(own.data(), static_cast<int>(doubles * own.size()), MPI_DOUBLE, all.data(), counts.data(),
              places.data(), MPI_DOUBLE, 0, MPI_COMM_WORLD);
  return all;
}

// 17 digits tell every double from its neighbours.
void print_line(const char* name, double price, double sum, double squares, double n, bool has_errors) {
  std::printf("%s  %.17g", name, price);
  if (has_errors)
    std::printf("  +- %.2g", std::sqrt((squares / n - sum / n * (sum / n)) / n));
  std::printf("\n");
}

void print(const std::vector<sums>& batches, std::uint64_t paths, bool has_errors) {
  sums all;
  for (const sums& batch : batches)
    all.add(batch);
  const auto n = double(paths);
  const double exact = basket::exact_geometric_price();
  print_line("geometric mean            ", all.geometric / n, all.geometric, all.geometric_squares, n,
             has_errors);
  std::printf("  of it, exact              %.17g\n", exact);
  print_line("arithmetic mean           ", all.arithmetic / n, all.arithmetic, all.arithmetic_squares, n,
             has_errors);
  print_line("  of it, with its control ", exact + all.control / n, all.control, all.control_squares, n,
             has_errors);
}

// `engine` stands before the words of path 0.
template <class Engine>
void price(const job& mine, const options& given, sycl::queue queue, Engine engine, bool has_errors) {
  const std::uint64_t paths = given.number("--paths", 1, std::uint64_t{1} << 31);
  const std::uint64_t batches = (paths + paths_a_batch - 1) / paths_a_batch;
  const std::uint64_t first = mine.first_of(batches), last = mine.last_of(batches);
  engine.skip_ahead(first * paths_a_batch * basket::dimensions);

  std::vector<sums> done;
  std::uint64_t batch = first;
  const saved_run saved(given.text("--save"), "asian_basket",
                        given.text("--engine") + ", " + std::to_string(paths) + " paths", mine);
  saved.load(queue, engine, batch, done);

  // By inversion every number takes one word, which keeps quasi-random points even.
  const rng::gaussian<double, rng::gaussian_method::icdf> normal;
  const auto release = [&queue](double* memory) { sycl::free(memory, queue); };
  const std::unique_ptr<double, decltype(release)> numbers(
      sycl::malloc_shared<double>(paths_a_batch * basket::dimensions, queue), release);
  if (numbers == nullptr)
    throw std::runtime_error("no memory for the numbers");
  while (batch != last) {
    const std::uint64_t count = std::min(paths_a_batch, paths - batch * paths_a_batch);
    rng::generate(normal, engine, static_cast<std::int64_t>(count * basket::dimensions), numbers.get())
        .wait();
    done.emplace_back();
    for (std::uint64_t path = 0; path < count; ++path)
      done.back().add(basket::payoffs_of(numbers.get() + path * basket::dimensions));
    ++batch;
    if ((batch - first) % batches_a_save == 0)
      saved.save(engine, batch, done);
    mine.fail_if_asked(given, batch - first);
  }

  const std::vector<sums> all = gather(mine, batches, done);
  if (mine.rank == 0)
    print(all, paths, has_errors);
  saved.remove();
}

void program(const job& mine, const options& given) {
  sycl::queue queue;
  const std::string& name = given.text("--engine");
  if (name == "philox4x32x10")
    return price(mine, given, queue, rng::philox4x32x10(queue, 42), true);
  if (name == "mrg32k3a")
    return price(mine, given, queue, rng::mrg32k3a(queue, 42), true);
  if (name == "mt19937")
    return price(mine, given, queue, rng::mt19937(queue, 42), true);
  if (name == "sobol") {
    rng::sobol points(queue, basket::dimensions);
    points.skip_ahead(basket::dimensions); // the origin, where normal numbers are at the end of a tail
    return price(mine, given, queue, points, false);
  }
  throw std::invalid_argument("--engine " + name + ": not one of philox4x32x10, mrg32k3a, mt19937, sobol");
}

} // namespace

int main(int count, char** words) {
  return run(count, words,
             {{"--engine", "philox4x32x10"}, {"--paths", "1048576"}, {"--save", ""}, {"--kill", ""}},
             program);
}
