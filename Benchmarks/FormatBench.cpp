// The program's output formats, in this process and into /dev/null: for the sample, and for the largest image in the
// folder QUORLIN_BENCH_IMAGES.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "Benchmarks/Allocations.h"
#include "Benchmarks/Tables.h"
#include "Tools/quorlin/Commands.h"

namespace {

// Redirects standard output and error to /dev/null while it lives.
class ClSilence {
  public:
    ClSilence() {
        const int null = open("/dev/null", O_WRONLY);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            m_kept[stream] = dup(stream);
            dup2(null, stream);
        }
        close(null);
    }
    ClSilence(const ClSilence&) = delete;
    ClSilence& operator=(const ClSilence&) = delete;
    ~ClSilence() {
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            dup2(m_kept[stream], stream);
            close(m_kept[stream]);
        }
    }

  private:
    int m_kept[STDERR_FILENO + 1] = {};
};

void Show(benchmark::State& state, const Arguments_t& arguments) {
    int exitCode = 0;
    const Allocations_t before = AllocationsSoFar();
    {
        const ClSilence silence;
        for (auto _ : state) exitCode |= RunProgram(arguments);
        // A run leaves its table open until the next one, so a run without a table closes the last.
        RunProgram({"--image", "/dev/null/none"});
    }
    if (exitCode != 0) state.SkipWithError("the program failed");
    state.counters["allocations"] =
        static_cast<double>(AllocationsSoFar().count - before.count) / static_cast<double>(state.iterations());
}

const bool registered = [] {
    const std::vector<std::filesystem::path> images = Images();
    const auto largest = std::ranges::max_element(images, {}, [](const auto& path) { return file_size(path); });
    for (const std::string format : {"lines", "text", "json", "ndjson", "csv"}) {
        const auto add = [&](const std::string& name, const Arguments_t& arguments) {
            benchmark::RegisterBenchmark(("BM_Format/" + format + "/" + name).c_str(), Show, arguments)
                ->Unit(benchmark::kMicrosecond);
        };
        add("sample", {"--sample", "--format", format});
        if (largest != images.end()) add(largest->stem().string(), {"--image", largest->string(), "--format", format});
    }
    return true;
}();

}  // namespace
