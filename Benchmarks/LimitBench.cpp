// What the machine itself needs for the work that no such program can avoid: the lower bounds for our own times.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr int64_t kBlock = 64 << 10;

// Copies a block.
void BM_LimitCopy(benchmark::State& state) {
    std::vector<char> from(kBlock, 'a'), to(kBlock);
    for (auto _ : state) {
        benchmark::DoNotOptimize(from.data());
        std::memcpy(to.data(), from.data(), kBlock);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * kBlock);
}
BENCHMARK(BM_LimitCopy);

// Writes a block into /dev/null, and into a temporary file.
void Write(benchmark::State& state, std::FILE* file) {
    const std::vector<char> block(kBlock, 'a');
    bool right = file != nullptr;
    for (auto _ : state) right = right && pwrite(fileno(file), block.data(), kBlock, 0) == kBlock;
    if (!right) state.SkipWithError("a write failed");
    if (file != nullptr) std::fclose(file);
    state.SetBytesProcessed(state.iterations() * kBlock);
}
void BM_LimitWriteNull(benchmark::State& state) { Write(state, std::fopen("/dev/null", "w")); }
BENCHMARK(BM_LimitWriteNull);
void BM_LimitWriteFile(benchmark::State& state) { Write(state, std::tmpfile()); }
BENCHMARK(BM_LimitWriteFile);

// Opens, reads and closes a file of the size of a table.
void BM_LimitReadFile(benchmark::State& state) {
    const int64_t size = state.range(0);
    char name[] = "/tmp/quorlin_bench_XXXXXX";
    const int file = mkstemp(name);
    std::vector<char> bytes(static_cast<size_t>(size), 'a');
    bool right = file >= 0 && write(file, bytes.data(), bytes.size()) == size && close(file) == 0;
    for (auto _ : state) {
        const int again = open(name, O_RDONLY);
        right = right && read(again, bytes.data(), bytes.size()) == size && close(again) == 0;
    }
    unlink(name);
    if (!right) state.SkipWithError("a read failed");
    state.SetBytesProcessed(state.iterations() * size);
}
BENCHMARK(BM_LimitReadFile)->Arg(4 << 10)->Arg(23'076);

// Allocates and frees a block of the size of an item.
void BM_LimitAllocate(benchmark::State& state) {
    for (auto _ : state) {
        void* block = std::malloc(64);
        benchmark::DoNotOptimize(block);
        std::free(block);
    }
}
BENCHMARK(BM_LimitAllocate);

}  // namespace
