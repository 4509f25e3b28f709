// The time of a sweep: for the sample, and for tables with more and more structures.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "Benchmarks/Tables.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"

namespace {

// Opens a package on the table, sweeps, reads all items, and closes it.
void Sweep(benchmark::State& state, const uint8_t* table, size_t size, int64_t structures) {
    const ImageSource_t source = {table, static_cast<uint32_t>(size), 3, 0, 0};
    int64_t items = 0;
    std::string line;
    for (auto _ : state) {
        if (SetImageMachine(&source) != kSuccess) return state.SkipWithError("another table is in use");
        auto* package = static_cast<Quorlin*>(CreateSmbiosPackage());
        package->Initialize();
        items += package->GetItemCount();
        while (package->GetNextItem(line) == kSuccess) benchmark::DoNotOptimize(line.data());
        package->UnInitialize();
        DestroySmbiosPackage(package);
    }
    state.SetItemsProcessed(state.iterations() * structures);
    state.counters["items"] = benchmark::Counter(static_cast<double>(items), benchmark::Counter::kIsRate);
}

void BM_SweepStructures(benchmark::State& state) {
    const std::vector<uint8_t> table = SmallStructures(state.range(0));
    Sweep(state, table.data(), table.size(), state.range(0));
}
// A sweep is linear: items_per_second at 65,535 must be at least half of that at 1,000.
BENCHMARK(BM_SweepStructures)->Arg(1000)->Arg(10000)->Arg(65535)->Unit(benchmark::kMillisecond);

void BM_SweepSample(benchmark::State& state) {
    const std::span<const uint8_t> table = SampleTable();
    Sweep(state, table.data(), table.size(), 0);
}
BENCHMARK(BM_SweepSample)->Unit(benchmark::kMicrosecond);

}  // namespace
