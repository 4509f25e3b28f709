// Containers of pointers: a plain list, a sorted list, a red-black tree or an AVL tree, through one type of handle.
//
// Ownership  A container owns its nodes but not the data. It stores the caller's pointers, which must stay valid while
//            they are stored. Only the compare function dereferences them.
// Threads    The nine operations may be called on one handle by several threads at once: each takes the container's
//            named lock, and calls the compare function under it. Containers may be created and destroyed on several
//            threads at once.
// Callbacks  Compare and position functions must not throw. They may read the container that calls them, but not
//            change it.
// Indexes    Start at 0.
// Null       Null can't be stored.
#pragma once

#include <cstdint>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

struct ContainerRecord_t;
using ContainerHandle_t = ContainerRecord_t*;

// Returns a negative number, 0 or a positive number if the first is below, equal to or above the second.
using ContainerCompare_t = int32_t (*)(const void* first, const void* second);
// Returns the index at which a sorted list places `data`.
using ContainerPosition_t = int32_t (*)(ContainerHandle_t handle, void* data);

enum ContainerType_t : uint32_t { kPlainList = 0, kSortedList = 1, kRedBlackTree = 2, kAVLTree = 3 };
// What the stored pointers point to. The library compares integers, characters and floats by value and NUL-terminated
// strings by their bytes; a NaN compares as below everything, itself included. kOwnData needs a compare function.
enum ContainerDataType_t : uint32_t { kInt32Data = 0, kInt8Data = 1, kFloatData = 2, kStringData = 3, kOwnData = 4 };

// The parameters of a new container. InitContainer writes to it: it sets CompareFunction if DataType is 0 to 3, and
// PositionFunction if OwnPositionFunction is 0.
struct ContainerParams_t {
    char ListName[128];            // NUL-terminated; also the name of the lock
    uint32_t ContainerType;        // ContainerType_t
    uint32_t DataType;             // ContainerDataType_t
    uint32_t OwnPositionFunction;  // 0: the library's; 1: the caller's
    ContainerCompare_t CompareFunction;
    ContainerPosition_t PositionFunction;
};

// Status  All operations return 1 for success; 4 for a null handle; 5 if the kind doesn't have the operation or its
// lock
//         can't be taken. Further statuses are listed with each operation. A failed operation writes no out pointer
//         and, except for UpdateNode, changes nothing. Out pointers must be valid: they aren't checked.
// Cost    Constant unless said otherwise, plus taking and releasing the lock.
extern "C" {
// Creates an empty container, to be destroyed by UnInitContainer. `params` isn't needed afterwards. Containers with the
// same name share one lock, on Windows in all processes of the session; one with an empty name has its own.
// Status  4 null params, or out of memory; 5 the compare function is missing (only the plain list works without), the
//         position function of a sorted list is missing, the kind is unknown, or the lock can't be created
QUORLIN_API status_t InitContainer(ContainerParams_t* params, ContainerHandle_t* handle, uint8_t reserved);

// Destroys the handle. Remaining nodes are not freed: empty the container first. No other thread may be using the
// handle.
QUORLIN_API status_t UnInitContainer(ContainerHandle_t handle);

// Plain list: inserts an entry at `index`. The entries from there on move up by one.
// Status  2 index negative or above the number of entries; 3 out of memory; 4 null data
// Cost    linear in the distance to the nearest end or to the place of the last read
QUORLIN_API status_t InsertAtIndex(ContainerHandle_t handle, void* data, int32_t index);

// Inserts an entry: at the end of a plain list, before its equals in a sorted list, after its equals in a tree.
// Status  2 the position function returned no valid index; 3 out of memory (5 in an AVL tree that isn't empty);
//         4 null data
// Cost    plain list constant; sorted list linear; trees logarithmic, but an AVL tree linear in the number of equals
QUORLIN_API status_t Insert(ContainerHandle_t handle, void* data);

// Reads the entry at `index`: of a list in list order, of a tree in ascending order.
// Status  Empty container: 4, a red-black tree 2. Negative index: 2. Index past the end: 5 for a list, 2 for a tree.
//         5 if more than 99 nodes of an AVL tree are on the way, which takes many equal entries
// Cost    linear in the distance: in a list from the nearest of both ends and the place of the last read; in a tree
//         from that place if it is before `index`, else from the first entry. Reading all entries by ascending index is
//         linear unless the container changes meanwhile.
QUORLIN_API status_t RetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index);

// Reads the last entry, which is the largest of a sorted kind. For an empty red-black tree: null and status 1.
// Status  5 empty
// Cost    list constant; tree its height
QUORLIN_API status_t RetrieveFromEnd(ContainerHandle_t handle, void** data);

// Lists: removes the entry at `index`.
// Status  2 index negative or past the end; 4 empty list
// Cost    as InsertAtIndex
QUORLIN_API status_t DeleteAtIndex(ContainerHandle_t handle, int32_t index);

// Removes one entry that compares equal to `data`: the first one of a list, the one nearest to the root of a tree.
// Status  4 null data, a list without compare function, or an empty container (a red-black tree: 5)
//         Not found: 2, in a red-black tree 5
// Cost    list linear; tree logarithmic, but an AVL tree linear in the number of equals
QUORLIN_API status_t DeleteByData(ContainerHandle_t handle, void* data);

// Lists: appends an entry. A sorted list refuses data below its last entry.
// Status  2 refused; 3 out of memory; 4 null data
QUORLIN_API status_t Push(ContainerHandle_t handle, void* data);

// Lists: removes the last entry and returns its data. Push and Pop together make a stack.
// Status  5 empty
QUORLIN_API status_t Pop(ContainerHandle_t handle, void** data);

// Replaces an entry that compares equal to oldData. Plain list: newData takes the place of the first such entry. Other
// kinds: removes one as DeleteByData does, then inserts newData; if that fails for want of memory, the old entry is
// lost. Status  4 null data, or a plain list without compare function; 2 no such entry in a plain list; for other kinds
// the
//         status of DeleteByData or Insert
// Cost    list linear; tree as its DeleteByData and Insert
QUORLIN_API status_t UpdateNode(ContainerHandle_t handle, void* oldData, void* newData);

// The library's version; empty before the first InitContainer.
// Status  4 null version
QUORLIN_API status_t GetContainerLibVersion(LibVersion_t* version);
}
