// The record that a container's handle points to, and the nodes and operations of each kind.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "Packages/Container/Container.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/NamedLock.h"
#include "Packages/OS/OS.h"

// Levels of trace lines, numbered as in the trace library.
enum ContainerTraceLevel_t : uint32_t { kTraceEntry = 1, kTraceError = 16, kTraceExit = 32 };

// Each source file defines TRACE(function, level, ...) with its own name.
#define CONTAINER_TRACE(file, function, level, ...)                                                          \
    do {                                                                                                     \
        if (containerLibrary.Trace != nullptr)                                                               \
            containerLibrary.Trace("Container\\Sources\\" file, (function), __LINE__, (level), __VA_ARGS__); \
    } while (false)

struct ListNode_t {
    void* Data;
    ListNode_t *Prev, *Next;  // null at the ends
};

enum RBColor_t : uint32_t { kBlack = 0, kRed = 1 };

struct RBNode_t {
    RBNode_t *Left, *Right, *Parent;  // the tree's sentinel where there is none
    uint32_t Color;                   // RBColor_t
    void* Data;
};

struct AVLNode_t {
    int32_t Height;   // 1 for a leaf
    int32_t Balance;  // the height of Left minus that of Right; kept so that neither child has to be visited
    AVLNode_t *Left, *Right, *Parent;  // null where there is none
    void* Data;
};

// One slot per operation; null if the kind doesn't have it.
struct ContainerOperations_t {
    status_t (*InsertAtIndex)(ContainerHandle_t handle, void* data, int32_t index);
    status_t (*Insert)(ContainerHandle_t handle, void* data);
    status_t (*RetrieveFromIndex)(ContainerHandle_t handle, void** data, int32_t index);
    status_t (*RetrieveFromEnd)(ContainerHandle_t handle, void** data);
    status_t (*DeleteAtIndex)(ContainerHandle_t handle, int32_t index);
    status_t (*DeleteByData)(ContainerHandle_t handle, void* data);
    status_t (*Push)(ContainerHandle_t handle, void* data);
    status_t (*Pop)(ContainerHandle_t handle, void** data);
    status_t (*UpdateNode)(ContainerHandle_t handle, void* oldData, void* newData);
};

// Where the last indexed read ended. The next one goes on from there, so that reading all entries by ascending index is
// linear. Code that links, unlinks or frees a node forgets the place before it next calls a function of the caller's.
struct ListPlace_t {
    ListNode_t* Node;  // null if no place is known
    size_t Index;
};

inline constexpr size_t kMostPendingNodes = 99;

// The same for either tree: the state of an in-order walk.
struct TreePlace_t {
    bool Known;                        // whether the walk can go on
    int64_t Index;                     // of the last entry reached
    void* Data;                        // of that entry
    void* Next;                        // the subtree to go on with
    size_t Depth;                      // number of pending nodes
    void* Pending[kMostPendingNodes];  // nodes on the way down that are still to be reached
};

struct ContainerRecord_t {
    char ListName[128];  // first, so that a trace line can print the handle as a text
    union {              // the list's first node, or the tree's root
        ListNode_t* Head;
        RBNode_t* RBRoot;
        AVLNode_t* AVLRoot;
    };
    ListNode_t* Tail;
    uint32_t ContainerType;
    uint32_t DataType;
    uint32_t OwnPositionFunction;
    ContainerCompare_t CompareFunction;
    ContainerPosition_t PositionFunction;
    ContainerOperations_t Operations;
    NamedLock_t* Lock;
    size_t ListCount;   // nodes of a list
    RBNode_t Sentinel;  // of a red-black tree; one per tree, because a delete writes its Parent
    ListPlace_t ListPlace;
    TreePlace_t TreePlace;
};
static_assert(offsetof(ContainerRecord_t, ListName) == 0);

// The library's state.
struct ContainerLibrary_t {
    std::atomic<int32_t> LiveContainers;
    std::atomic<bool> IsUsed;  // since the first InitContainer
    // Writes trace lines; nothing sets it yet, so a trace call costs one test. A function pointer, because the trace
    // library is built on containers.
    void (*Trace)(const char* sourceFile, const char* function, uint32_t line, uint32_t level, const char* format, ...)
        QUORLIN_PRINTF_LIKE(5, 6);
    void* (*Malloc)(size_t size);  // os_malloc and os_free; tests set failing ones
    void (*Free)(void* block);
};
extern ContainerLibrary_t containerLibrary;

template <class Node_t>
Node_t* NewNode(const Node_t& node) {
    auto* made = static_cast<Node_t*>(containerLibrary.Malloc(sizeof(Node_t)));
    if (made != nullptr) *made = node;
    return made;
}

// The lists (LinkedLists.cpp)
status_t LinkedListInit(ContainerHandle_t handle);
status_t LinkedListInsertAtIndex(ContainerHandle_t handle, void* data, int32_t index);
status_t LinkedListPush(ContainerHandle_t handle, void* data);
status_t ListRetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index);
status_t ListRetrieveFromEnd(ContainerHandle_t handle, void** data);
status_t ListDeleteAtIndex(ContainerHandle_t handle, int32_t index);
status_t ListDeleteByData(ContainerHandle_t handle, void* data);
status_t ListPop(ContainerHandle_t handle, void** data);
status_t ListUpdateNode(ContainerHandle_t handle, void* oldData, void* newData);
status_t SortedLinkedListInit(ContainerHandle_t handle);
status_t SortedLinkedListInsert(ContainerHandle_t handle, void* data);
status_t SortedLinkedListPush(ContainerHandle_t handle, void* data);
status_t SortedListUpdateNode(ContainerHandle_t handle, void* oldData, void* newData);
// Returns the index of the first entry that isn't below `data`, or the number of entries.
int32_t SortedListPosition(ContainerHandle_t handle, void* data);

// The red-black tree (RBTree.cpp)
status_t RBTreeInit(ContainerHandle_t handle);
status_t RBTreeInsert(ContainerHandle_t handle, void* data);
status_t RBTreeDelete(ContainerHandle_t handle, void* data);
status_t RBTreeRetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index);
status_t RBTreeRetrieveFromEnd(ContainerHandle_t handle, void** data);
status_t RBTreeUpdateNode(ContainerHandle_t handle, void* oldData, void* newData);

// The AVL tree (AVLTree.cpp)
status_t AVLTreeInit(ContainerHandle_t handle);
status_t AVLTreeInsert(ContainerHandle_t handle, void* data);
status_t AVLTreeDelete(ContainerHandle_t handle, void* data);
status_t AVLTreeRetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index);
status_t AVLTreeRetrieveFromEnd(ContainerHandle_t handle, void** data);
status_t AVLTreeUpdateNode(ContainerHandle_t handle, void* oldData, void* newData);

// Reads the entry at `index` in ascending order. `absent` is the pointer that means no child.
// Status  1; 2 no such index; 5 more than kMostPendingNodes pending nodes, in an unbalanced tree
template <class Node_t>
status_t RetrieveInOrder(TreePlace_t* place, Node_t* root, const Node_t* absent, void** data, int32_t index) {
    if (!place->Known || index < place->Index) {
        place->Index = -1;
        place->Depth = 0;
        place->Next = root;
    }
    place->Known = false;
    auto* node = static_cast<Node_t*>(place->Next);
    while (place->Index < index || index < 0) {
        for (; node != absent; node = node->Left) {
            if (place->Depth == kMostPendingNodes) return kFailure;
            place->Pending[place->Depth++] = node;
        }
        if (place->Depth == 0) return kBadValue;
        node = static_cast<Node_t*>(place->Pending[--place->Depth]);
        ++place->Index;
        place->Data = node->Data;
        node = node->Right;
    }
    place->Next = node;
    place->Known = true;
    *data = place->Data;
    return kSuccess;
}
