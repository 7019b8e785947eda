#include "gpu_bench.hpp"

int main(int count, char** arguments) {
  bench::register_ours();
  bench::register_peers();
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
