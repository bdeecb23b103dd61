#include <benchmark/benchmark.h>

// Cases are named room/operation/size. Where the bare kernel can do the same work, a twin case
// beside ours does it in the same run: performance is the ratio of the two, and the growth with the
// size.

BENCHMARK_MAIN();
