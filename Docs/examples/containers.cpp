// Sorts three names with a red-black tree and prints them.
#include <cstdio>

#include "Packages/Container/Container.h"

int main() {
    ContainerParams_t params{};
    std::snprintf(params.ListName, sizeof params.ListName, "ExampleNames");
    params.ContainerType = kRedBlackTree;
    params.DataType = kStringData;
    ContainerHandle_t names = nullptr;
    if (InitContainer(&params, &names, 0) != kSuccess) return 1;

    char boards[][8] = {"Willow", "Alder", "Rowan"};  // the container keeps pointers: the names stay ours
    for (char* board : boards) {
        if (Insert(names, board) != kSuccess) return 1;
    }

    void* name = nullptr;
    for (int32_t i = 0; RetrieveFromIndex(names, &name, i) == kSuccess; ++i) {
        std::printf("%d %s\n", i, static_cast<char*>(name));
    }

    for (char* board : boards) DeleteByData(names, board);  // frees the nodes, which UnInitContainer doesn't
    UnInitContainer(names);
    return 0;
}
