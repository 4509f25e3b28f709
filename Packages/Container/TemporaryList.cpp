// A plain list to build on until the container library stands. 
#include <cstddef>
#include <vector>

#include "Packages/Container/Container.h"
struct ContainerRecord_t {
    std::vector<void*> data;
};
status_t InitContainer(ContainerParams_t*, ContainerHandle_t* handle, uint8_t) { return *handle = new ContainerRecord_t, kSuccess; }
status_t UnInitContainer(ContainerHandle_t handle) { return delete handle, kSuccess; }
status_t Insert(ContainerHandle_t handle, void* data) { return handle->data.push_back(data), kSuccess; }
status_t Push(ContainerHandle_t handle, void* data) { return Insert(handle, data); }
status_t RetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index) {
    if (static_cast<std::size_t>(index) >= handle->data.size()) return kFailure;
    return *data = handle->data[static_cast<std::size_t>(index)], kSuccess;
}
status_t DeleteByData(ContainerHandle_t handle, void* data) { return std::erase(handle->data, data) != 0 ? kSuccess : kBadValue; }
status_t Pop(ContainerHandle_t handle, void** data) {
    if (handle->data.empty()) return kFailure;
    *data = handle->data.back();
    handle->data.pop_back();
    return kSuccess;
}
