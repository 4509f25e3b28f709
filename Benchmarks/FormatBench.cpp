// The host program's formats, in this process and into /dev/null: the sample, and the largest image of the folder that
// QUORLIN_BENCH_IMAGES names.
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

// Standard output and error are /dev/null as long as this lives.
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
        // A run leaves its table to the end of the process or to the next run, and so to one that finds none.
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
