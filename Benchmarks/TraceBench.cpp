// The time of a trace call that is switched off. Every function of the lower libraries makes two.
#include <benchmark/benchmark.h>

#include "Packages/Debug/Debug.h"

#define TRACE(...) QUORLIN_TRACE(handle, "Benchmarks\\Trace", "TraceBench", kEntry, __VA_ARGS__)

// An open handle that writes nothing, as there is no configuration.
static DebugHandle_t SilentHandle() {
    static DebugHandle_t handle = [] {
        DebugHandle_t opened = nullptr;
        DebugLibInit("TraceBench", &opened);
        return opened;
    }();
    return handle;
}

static void TraceNullHandle(benchmark::State& state) {
    DebugHandle_t handle = nullptr;
    for (auto _ : state) {
        benchmark::DoNotOptimize(handle);
        TRACE("\n( List Name: %s) return status : 0x%x", "SMBIOSStructList", 1u);
    }
}
BENCHMARK(TraceNullHandle);

static void TraceSilentHandle(benchmark::State& state) {
    DebugHandle_t handle = SilentHandle();
    if (handle == nullptr) state.SkipWithError("no handle");
    for (auto _ : state) {
        benchmark::DoNotOptimize(handle);
        TRACE("\n( List Name: %s) return status : 0x%x", "SMBIOSStructList", 1u);
    }
}
BENCHMARK(TraceSilentHandle);

// For hosts that call the function instead of the macro.
static void TraceSilentHandleByCall(benchmark::State& state) {
    DebugHandle_t handle = SilentHandle();
    if (handle == nullptr) state.SkipWithError("no handle");
    for (auto _ : state) {
        benchmark::DoNotOptimize(handle);
        DebugTrace(handle, "", "TraceBench", __LINE__, kEntry, "\n( List Name: %s) return status : 0x%x",
                   "SMBIOSStructList", 1u);
    }
}
BENCHMARK(TraceSilentHandleByCall);
