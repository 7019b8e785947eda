#include "subjects.hpp"

int main(int count, char** arguments) {
  bench::register_distribution_peers();
  bench::register_distributions();
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
