// The benchmarks' start: the kernels are measured with the allocator tuned as the program runs them
// (a fresh array then reuses freed memory instead of faulting in new pages each time).
#include <benchmark/benchmark.h>

#include "base/memory_tunables.h"

int main(int argc, char** argv) {
  velmora::RestartWithMallocTunables(argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
