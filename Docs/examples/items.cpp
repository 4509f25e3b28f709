// Prints the items of a bare table, or of this machine, by the package interface: one line an item.
//
//     c++ -std=c++20 items.cpp $(pkg-config --cflags --libs quorlin) -o items-cpp
//     ./items-cpp [TABLE]
//
// TABLE holds structures from the first byte on. Build with the compiler that the library was built with: text comes as
// std::string.
#include <quorlin/Packages/FERROXExternal/StructureStore/Machine.h>
#include <quorlin/Quorlin.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <vector>

int main(int argc, char** argv) {
    std::vector<char> bytes;  // outlives the package
    if (argc > 1) {
        std::ifstream file(argv[1], std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
        const ImageSource_t image = {reinterpret_cast<const uint8_t*>(bytes.data()),
                                     static_cast<uint32_t>(bytes.size()), 3, 0, 0};
        SetImageMachine(&image);
    } else {
        SetMachine(ThisMachineWithoutDriver());  // the default takes the driver, and installs it on Windows
    }
    const std::unique_ptr<BaseAbstraction, void (*)(BaseAbstraction*)> package(CreateSmbiosPackage(),
                                                                               DestroySmbiosPackage);
    const status_t status = package->Initialize();
    if (status == kSuccess) {
        std::string line;
        while (package->GetNextItem(line) == kSuccess) std::cout << line << '\n';
    } else {
        std::cerr << "no table, status " << status << '\n';
    }
    package->UnInitialize();
    return status == kSuccess ? 0 : 1;
}
