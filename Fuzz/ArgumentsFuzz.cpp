// Runs the program with any arguments, one on each line of the input. It finds the images "dump", "table" and "folder",
// and "names", a list of images.
#include "Fuzz/Platform.h"
#include "Packages/Format/TableFile.h"
#include "Packages/Sample/Sample.h"

static std::string Text(std::span<const uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span<const uint8_t> sample = SampleTable();
    const std::string dump = Text(MakeDump(sample, 3, 0)), half = Text(sample.first(sample.size() / 2));
    platform.files = {
        {"dump",       dump                 },
        {"table",      half                 },
        {"names",      "dump\nnone\n\ntable"},
        {"folder/DMI", Text(sample)         },
    };
    Arguments_t arguments(1);
    for (const char character : std::string(reinterpret_cast<const char*>(data), size)) {
        if (character == '\n')
            arguments.emplace_back();
        else if (character != '\0')  // no argument can contain one
            arguments.back() += character;
    }
    for (const std::string& argument : arguments)
        if (NamesAFile(argument) || argument == "-") return 0;  // "-" would wait for standard input
    RunOnPlatform(arguments);
    EndRuns();
    return 0;
}
