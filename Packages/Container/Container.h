// Containers of the caller's pointers: a plain list, a sorted list, a red-black tree or an AVL tree behind one handle.
//
// Ownership  A container owns its nodes and never the data: pointers are stored, not copied, and never looked behind
//            but by the compare function. Data must stay valid while it is stored.
// Threads    Any thread may call the nine operations on one handle: each holds the container's named lock while it
//            runs, the compare function included. Containers may be created and destroyed on any threads at once.
// Functions  of the caller's must not throw. They may read the container that calls them, and not change it.
// Indexes    From 0.
// Null       No entry can be null.
#pragma once

#include <cstdint>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

struct ContainerRecord_t;
using ContainerHandle_t = ContainerRecord_t*;

// Negative, 0 or positive as the first is below, equal to or above the second.
using ContainerCompare_t = int32_t (*)(const void* first, const void* second);
// The index at which a sorted list places `data`.
using ContainerPosition_t = int32_t (*)(ContainerHandle_t handle, void* data);

enum ContainerType_t : uint32_t { kPlainList = 0, kSortedList = 1, kRedBlackTree = 2, kAVLTree = 3 };
// What stored pointers point to, and how the library then compares: integers; characters; floats, where a NaN is below
// everything, itself too; NUL-terminated strings by their bytes; or anything, by the caller's own function.
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

// Status, for all operations: 1 success; 4 null handle; 5 the kind doesn't offer the operation, or its lock can't be
// taken. What else an operation gives stands with it. An operation that fails changes nothing, but for UpdateNode, and
// writes no out pointer. The out pointers themselves are not tested: they have to be valid.
// Cost, for n entries: what is not constant stands with the operation. All of them take and release the lock.
extern "C" {
// Creates an empty container. `params` may go away afterwards; the handle is the caller's, to give to UnInitContainer.
// All containers of one name exclude each other, also those in other processes; an empty name is a lock of its own.
// Status  4 null params, or no memory; 5 no compare function (all kinds but the plain list need one) or no position
//         function (the sorted list needs one), no such kind, or the lock can't be made
QUORLIN_API status_t InitContainer(ContainerParams_t* params, ContainerHandle_t* handle, uint8_t reserved);

// Destroys the handle. Nodes that the container still holds are not freed: empty it first. No other thread may use the
// handle any more.
QUORLIN_API status_t UnInitContainer(ContainerHandle_t handle);

// Plain list: the new entry takes this index, and those from there on move up by one.
// Status  2 index negative or above the number of entries; 3 no memory; 4 null data
// Cost    linear in the distance to the nearest end, or to the place of the last read
QUORLIN_API status_t InsertAtIndex(ContainerHandle_t handle, void* data, int32_t index);

// Adds an entry where the kind places it: at the end of a plain list, in front of its equals in a sorted list, behind
// its equals in a tree.
// Status  2 the caller's position function gave no valid index; 3 no memory; 4 null data; 5 in an AVL tree: no memory,
//         below the root
// Cost    plain list constant; sorted list linear; trees logarithmic, but an AVL tree linear in the number of equals
QUORLIN_API status_t Insert(ContainerHandle_t handle, void* data);

// Reads the entry at `index`: in a list by its place, in a tree by rising order.
// Status  empty: 4, a red-black tree 2. Negative index: 2. Index past the end: 5 for a list, 2 for a tree.
//         5 for an AVL tree with more than 99 nodes pending on the way, as only many equal entries can make it
// Cost    linear in the distance, for a list to the nearest of its ends and the place of the last read, for a tree to
//         that place if it lies below and to the first entry if not. So a whole read by rising index is linear as long
//         as nothing changes the container.
QUORLIN_API status_t RetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index);

// Reads the last entry, which is the largest one of a sorted kind. An empty red-black tree gives null and status 1.
// Status  5 empty
// Cost    list constant; tree its height
QUORLIN_API status_t RetrieveFromEnd(ContainerHandle_t handle, void** data);

// Lists: removes the entry at `index`.
// Status  2 index negative or past the end; 4 empty
// Cost    as InsertAtIndex
QUORLIN_API status_t DeleteAtIndex(ContainerHandle_t handle, int32_t index);

// Removes one entry that compares equal to `data`: in a list the first one, in a tree the one nearest to the root.
// Status  4 null data, a list without compare function, or an empty container (a red-black tree: 5)
//         Not found: 2, in a red-black tree 5
// Cost    list linear; tree logarithmic, but an AVL tree linear in the number of equals
QUORLIN_API status_t DeleteByData(ContainerHandle_t handle, void* data);

// Lists: adds at the end. A sorted list refuses data below its last entry; data equal to it goes behind it.
// Status  2 refused; 3 no memory; 4 null data
QUORLIN_API status_t Push(ContainerHandle_t handle, void* data);

// Lists: removes the last entry and gives its data. With Push, a stack.
// Status  5 empty
QUORLIN_API status_t Pop(ContainerHandle_t handle, void** data);

// Plain list: the first entry that compares equal to oldData becomes newData, in its place. Other kinds: one such entry
// is removed as by DeleteByData, and newData inserted as by Insert; if memory is short for that, the old entry is gone.
// Status  4 null data, or a plain list without compare function; 2 a plain list without such an entry; for other kinds
//         what DeleteByData and then Insert give
// Cost    list linear; tree as its DeleteByData and Insert
QUORLIN_API status_t UpdateNode(ContainerHandle_t handle, void* oldData, void* newData);

// The library's version; empty before the first InitContainer.
// Status  4 null version
QUORLIN_API status_t GetContainerLibVersion(LibVersion_t* version);
}
