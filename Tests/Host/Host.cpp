// A host that is built separately from the library, with the public headers only. It loads the library, finds the
// exports by name, and prints all items of this machine, or of a bare table in a file, through the virtual operations.
//
//     host LIBRARY [TABLE | --without-driver]
//
// Exit  0; 1 the library can't be loaded or used; 2 an operation returned something unexpected
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Quorlin.h"

// Finds a function in a shared library, which stays loaded. Ends the program with a message if either isn't available.
void* FindIn(const char* library, const char* name);

namespace {

const char* library = nullptr;

template <class Function>
Function* Find(const char* name) {
    return reinterpret_cast<Function*>(FindIn(library, name));
}

bool allIsWell = true;

void Expect(bool isSo, const char* what) {
    if (isSo) return;
    std::fprintf(stderr, "failed: %s\n", what);
    allIsWell = false;
}
#define EXPECT(condition) Expect((condition), #condition)

std::vector<std::string> Lines(BaseAbstraction& package) {
    std::vector<std::string> lines;
    std::string line;
    while (package.GetNextItem(line) == kSuccess) lines.push_back(line);
    return lines;
}

std::vector<std::string> Sweep(BaseAbstraction* created) {
    auto& package = static_cast<Quorlin&>(*created);
    const status_t status = package.Initialize();
    if (status != kSuccess) {
        std::fprintf(stderr, "Initialize: status %u\n", status);
        return {};
    }
    EXPECT(package.ReservedOperation1() == kFailure);
    EXPECT(package.ReservedOperation2() == kFailure);
    EXPECT(package.GetItemByName("") == kBadValue);
    EXPECT(package.GetItemByName("a name that is longer than a string object holds by itself") == kFailure);
    std::vector<std::string> lines = Lines(package);
    EXPECT(package.GetItemCount() == lines.size());
    EXPECT(package.GetItemValue(package.GetItemCount()).empty());
    EXPECT(lines.size() > 1 && lines[1] == "\"Type\", \"" + package.GetItemValue(1) + "\"");
    const uint32_t count = package.GetItemCount();
    EXPECT(package.GetTypes(1) == kSuccess);  // the same structures again
    EXPECT(Lines(package).size() == package.GetItemCount() - count);
    EXPECT(package.UnInitialize() == kSuccess);
    EXPECT(package.GetItemCount() == 0);
    return lines;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 1;
    library = argv[1];
    auto* create = Find<decltype(CreateSmbiosPackage)>("CreateSmbiosPackage");
    auto* createFor = Find<decltype(CreateSmbiosPackageForKovr)>("CreateSmbiosPackageForKovr");
    auto* destroy = Find<decltype(DestroySmbiosPackage)>("DestroySmbiosPackage");
    auto* destroyFor = Find<decltype(DestroySmbiosPackageForKovr)>("DestroySmbiosPackageForKovr");

    std::vector<char> bytes;
    if (argc > 2 && argv[2] == std::string("--without-driver")) {
        auto* machine = Find<decltype(ThisMachineWithoutDriver)>("ThisMachineWithoutDriver");
        EXPECT(Find<decltype(SetMachine)>("SetMachine")(machine()) == kSuccess);
    } else if (argc > 2) {
        std::ifstream file(argv[2], std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
        const ImageSource_t image = {reinterpret_cast<const uint8_t*>(bytes.data()),
                                     static_cast<uint32_t>(bytes.size()), 3, 0, 0};
        EXPECT(Find<decltype(SetImageMachine)>("SetImageMachine")(&image) == kSuccess);
    }

    BaseAbstraction* package = create();
    const std::vector<std::string> lines = Sweep(package);
    destroyFor(package);  // both functions destroy any package
    if (lines.empty()) return 1;
    for (const std::string& line : lines) std::printf("%s\n", line.c_str());

    BaseAbstraction* preset = createFor(17);
    EXPECT(preset->Initialize() == kSuccess);
    EXPECT(Lines(*preset).empty());
    EXPECT(preset->UnInitialize() == kSuccess);
    destroy(preset);
    delete createFor(17);  // the destructor is virtual, and host and library share the heap
    destroy(nullptr);
    return allIsWell ? 0 : 2;
}
