// A fuzzer's main without a search: runs it once on each file that the arguments name, and on each file in the folders
// that they name.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

static bool RunFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return false;
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    return true;
}

int main(int count, char** arguments) {
    int inputs = 0;
    for (int i = 1; i < count; i++) {
        const std::filesystem::path path = arguments[i];
        if (!std::filesystem::is_directory(path)) {
            inputs += RunFile(path);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(path)) inputs += RunFile(entry.path());
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;  // a run without inputs proves nothing
}
