// Reading and decoding of whole images: the sample, and the images in the folder QUORLIN_BENCH_IMAGES.
#include <benchmark/benchmark.h>

#include <new>
#include <string>
#include <vector>

#include "Benchmarks/Allocations.h"
#include "Benchmarks/Tables.h"
#include "Packages/FERROXExternal/StructureStore/ImageFile.h"
#include "Packages/Format/Structures.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"

namespace {

int64_t CountStructures(const ImageSource_t& source) {
    int64_t count = 0;
    for (uint32_t offset = 0; offset < source.length; count++) {
        const TableStructure_t structure = StructureAt(source.table, source.length, offset);
        if (structure.size == 0) break;
        offset += structure.size;
    }
    return count;
}

// Opens a package, sweeps and closes it. Nothing reads its items.
void Decode(benchmark::State& state, const ImageSource_t& source) {
    int64_t items = 0;
    const Allocations_t before = AllocationsSoFar();
    for (auto _ : state) {
        if (SetImageMachine(&source) != kSuccess) return state.SkipWithError("another table is in use");
        BaseAbstraction* created = CreateSmbiosPackage();
        if (created == nullptr) throw std::bad_alloc();
        auto* package = static_cast<Quorlin*>(created);
        package->Initialize();
        items += package->GetItemCount();
        package->UnInitialize();
        DestroySmbiosPackage(package);
    }
    const Allocations_t after = AllocationsSoFar();
    const auto anItem = [&](int64_t total) { return static_cast<double>(total) / static_cast<double>(items); };
    state.counters["allocations_an_item"] = anItem(after.count - before.count);
    state.counters["bytes_an_item"] = anItem(after.bytes - before.bytes);
    using benchmark::Counter;
    const auto structures = static_cast<double>(state.iterations() * CountStructures(source));
    state.counters["structures"] = Counter(structures, Counter::kIsRate);
    state.counters["items"] = Counter(static_cast<double>(items), Counter::kIsRate);
    state.counters["time_an_item"] = Counter(static_cast<double>(items), Counter::kIsRate | Counter::kInvert);
}

void BM_DecodeSample(benchmark::State& state) {
    const std::span<const uint8_t> table = SampleTable();
    Decode(state, {table.data(), static_cast<uint32_t>(table.size()), 3, 0, 0});
}
BENCHMARK(BM_DecodeSample)->Unit(benchmark::kMicrosecond);

// Reads the values of an open package. needed_an_item counts the allocations that the interface makes necessary: it
// returns a std::string, which allocates for longer texts.
void BM_GetItemValue(benchmark::State& state) {
    const std::span<const uint8_t> table = SampleTable();
    const ImageSource_t source = {table.data(), static_cast<uint32_t>(table.size()), 3, 0, 0};
    if (SetImageMachine(&source) != kSuccess) return state.SkipWithError("another table is in use");
    Quorlin package(Quorlin::kSweep);
    package.Initialize();
    const uint32_t count = package.GetItemCount();
    int64_t needed = 0;
    for (uint32_t index = 0; index < count; index++)
        needed += package.GetItemValue(index).size() > std::string().capacity();
    const Allocations_t before = AllocationsSoFar();
    for (auto _ : state)
        for (uint32_t index = 0; index < count; index++) benchmark::DoNotOptimize(package.GetItemValue(index));
    const auto items = static_cast<double>(state.iterations() * count);
    state.SetItemsProcessed(state.iterations() * count);
    state.counters["allocations_an_item"] = static_cast<double>(AllocationsSoFar().count - before.count) / items;
    state.counters["needed_an_item"] = static_cast<double>(needed) / count;
    package.UnInitialize();
}
BENCHMARK(BM_GetItemValue)->Unit(benchmark::kMicrosecond);

void DecodeFile(benchmark::State& state, const std::string& path) {
    Image_t image;
    std::string error;
    if (ReadImage(path, TableForm_t::kAny, &image, &error) != kSuccess) return state.SkipWithError(error.c_str());
    Decode(state, image.source);
}

void ReadFile(benchmark::State& state, const std::string& path) {
    Image_t image;
    std::string error;
    int64_t bytes = 0;
    for (auto _ : state) {
        if (ReadImage(path, TableForm_t::kAny, &image, &error) != kSuccess) return state.SkipWithError(error.c_str());
        bytes += static_cast<int64_t>(image.bytes.size());
    }
    state.SetBytesProcessed(bytes);
}

const bool registered = [] {
    for (const auto& image : Images()) {
        const std::string path = image.string(), name = image.stem().string();
        const auto add = [&](const char* what, auto* run) {
            benchmark::RegisterBenchmark((what + name).c_str(), run, path)->Unit(benchmark::kMicrosecond);
        };
        add("BM_Decode/", DecodeFile);
        add("BM_ReadImage/", ReadFile);
    }
    return true;
}();

}  // namespace
