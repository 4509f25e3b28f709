// Containers of the caller's pointers: a plain list, a sorted list, a red-black tree or an AVL tree behind one handle.
//
// Ownership  A container owns its nodes and never the data: pointers are stored, not copied, and never looked behind
//            but by the compare function. Data must stay valid while it is stored.
// Threads    Any thread may call the nine operations on one handle: each holds the container's named lock while it
//            runs, the compare function included. InitContainer and UnInitContainer take no lock.
// Indexes    From 0.
#pragma once

#include <cstdint>

#include "Packages/OS/Status.h"
#include "Packages/Platform/Export.h"

struct ContainerRecord_t;
using ContainerHandle_t = ContainerRecord_t*;

// Negative, 0 or positive as the first is below, equal to or above the second.
using ContainerCompare_t = int32_t (*)(const void* first, const void* second);
// The index at which a sorted list places `data`.
using ContainerPosition_t = int32_t (*)(ContainerHandle_t handle, void* data);

enum ContainerType_t : uint32_t { kPlainList = 0, kSortedList = 1, kRedBlackTree = 2, kAVLTree = 3 };
enum ContainerDataType_t : uint32_t { kInt32Data = 0, kInt8Data = 1, kFloatData = 2, kStringData = 3, kOwnData = 4 };

// What a container is created from. InitContainer also writes it: a DataType of 0 to 3 sets CompareFunction, and
// OwnPositionFunction 0 sets PositionFunction.
struct ContainerParams_t {
    char ListName[128];            // NUL-terminated; the whole text names the lock
    uint32_t ContainerType;        // ContainerType_t
    uint32_t DataType;             // ContainerDataType_t: what stored pointers point to
    uint32_t OwnPositionFunction;  // 0: the library's; 1: the caller's
    ContainerCompare_t CompareFunction;
    ContainerPosition_t PositionFunction;
};

extern "C" {
QUORLIN_API status_t InitContainer(ContainerParams_t* params, ContainerHandle_t* handle, uint8_t reserved);
QUORLIN_API status_t UnInitContainer(ContainerHandle_t handle);
QUORLIN_API status_t InsertAtIndex(ContainerHandle_t handle, void* data, int32_t index);
QUORLIN_API status_t Insert(ContainerHandle_t handle, void* data);
QUORLIN_API status_t RetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index);
QUORLIN_API status_t RetrieveFromEnd(ContainerHandle_t handle, void** data);
QUORLIN_API status_t DeleteAtIndex(ContainerHandle_t handle, int32_t index);
QUORLIN_API status_t DeleteByData(ContainerHandle_t handle, void* data);
QUORLIN_API status_t Push(ContainerHandle_t handle, void* data);
QUORLIN_API status_t Pop(ContainerHandle_t handle, void** data);
QUORLIN_API status_t UpdateNode(ContainerHandle_t handle, void* oldData, void* newData);
QUORLIN_API status_t GetContainerLibVersion(LibVersion_t* version);
}
