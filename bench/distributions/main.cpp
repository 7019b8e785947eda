#include <oneapi/tbb/global_control.h>

#include "subjects.hpp"

int main(int count, char** arguments) {
  // as the peers have it; and the time of one thread is what is measured
  const tbb::global_control one_thread(tbb::global_control::max_allowed_parallelism, 1);
  bench::register_distribution_peers();
  bench::register_distributions();
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
