#include "library_bench.hpp"
#include "sizes.hpp"

int main(int count, char** arguments) {
  bench::register_bandwidth();
  bench::register_generate();
  bench::register_latency();
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
