#include "sizes.hpp"

int main(int count, char** arguments) {
  bench::register_bandwidth();
  bench::register_peers();
  bench::register_ours();
  bench::register_skips();
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
