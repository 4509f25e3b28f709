// What a sweep costs: for the sample, and against the number of structures in the table.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"

namespace {

// Small structures of all types that a sweep takes, in turn.
std::vector<uint8_t> SmallStructures(int64_t count) {
    std::vector<uint8_t> table;
    for (int64_t place = 0; place < count; place++) {
        const auto handle = static_cast<uint16_t>(place);
        const uint8_t structure[] = {static_cast<uint8_t>(3 + place % 39),
                                     8,
                                     static_cast<uint8_t>(handle & 0xFF),
                                     static_cast<uint8_t>(handle >> 8),
                                     1,
                                     0,
                                     0,
                                     0,
                                     'a',
                                     0,
                                     0};
        table.insert(table.end(), structure, structure + sizeof structure);
    }
    return table;
}

// One round: a package brought up on the table, swept, read, and taken down.
void Sweep(benchmark::State& state, const uint8_t* table, size_t size, int64_t structures) {
    const ImageSource_t source = {table, static_cast<uint32_t>(size), 3, 0, 0};
    int64_t items = 0;
    std::string line;
    for (auto _ : state) {
        SetImageMachine(&source);
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
// The time a structure stays the same: items_per_second at 60,000 is at least half of that at 1,000.
BENCHMARK(BM_SweepStructures)->Arg(1000)->Arg(10000)->Arg(60000)->Unit(benchmark::kMillisecond);

void BM_SweepSample(benchmark::State& state) {
    const std::span<const uint8_t> table = SampleTable();
    Sweep(state, table.data(), table.size(), 0);
}
BENCHMARK(BM_SweepSample)->Unit(benchmark::kMicrosecond);

}  // namespace
