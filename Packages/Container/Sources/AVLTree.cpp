// The AVL tree: with distinct keys the two subtrees of a node differ in height by at most 1. Equal keys stand in the
// order of their arrival, and are never rotated for: many of them make a chain, and the recursions as deep as it.
#include <algorithm>

#include "Packages/Container/Sources/ContainerRecord.h"

#define TRACE(function, level, ...) CONTAINER_TRACE("AVLTree", function, level, __VA_ARGS__)

static int32_t Height(const AVLNode_t* node) { return node == nullptr ? 0 : node->Height; }

// The heights of a node's subtrees, from the node alone.
static int32_t LeftHeight(const AVLNode_t* node) { return node->Height - 1 + std::min(node->Balance, 0); }
static int32_t RightHeight(const AVLNode_t* node) { return node->Height - 1 - std::max(node->Balance, 0); }

static void SetHeights(AVLNode_t* node, int32_t left, int32_t right) {
    node->Height = std::max(left, right) + 1;
    node->Balance = left - right;
}

// Both rotations give the subtree's new root, which is the old one if it has no child to raise.
static AVLNode_t* RotateRight(AVLNode_t* node) {
    AVLNode_t* risen = node->Left;
    if (risen == nullptr) return node;
    const int32_t outer = LeftHeight(risen), inner = RightHeight(risen);
    node->Left = risen->Right;
    risen->Right = node;
    SetHeights(node, inner, RightHeight(node));
    SetHeights(risen, outer, node->Height);
    return risen;
}

static AVLNode_t* RotateLeft(AVLNode_t* node) {
    AVLNode_t* risen = node->Right;
    if (risen == nullptr) return node;
    const int32_t outer = RightHeight(risen), inner = LeftHeight(risen);
    node->Right = risen->Left;
    risen->Left = node;
    SetHeights(node, LeftHeight(node), inner);
    SetHeights(risen, node->Height, outer);
    return risen;
}

status_t AVLTreeInit(ContainerHandle_t handle) {
    if (handle->CompareFunction == nullptr) {
        TRACE("AVLTreeInit", kError, "\n Function pOINTER for comparison needed. ");
        return kNullPointer;
    }
    handle->AVLRoot = nullptr;
    return kSuccess;
}

// The subtree's root after `data` has come into it. Data equal to the child's calls for no rotation.
static AVLNode_t* BalanceAfterInsert(ContainerHandle_t handle, AVLNode_t* node, const void* data) {
    if (node->Balance > 1) {
        const int32_t order = handle->CompareFunction(data, node->Left->Data);
        if (order > 0) node->Left = RotateLeft(node->Left);
        return order == 0 ? node : RotateRight(node);
    }
    if (node->Balance < -1) {
        const int32_t order = handle->CompareFunction(data, node->Right->Data);
        if (order < 0) node->Right = RotateRight(node->Right);
        return order == 0 ? node : RotateLeft(node);
    }
    return node;
}

// Status  1; 3 no memory for the first entry of the subtree; 5 no memory further down
static status_t InsertAt(ContainerHandle_t handle, AVLNode_t** place, void* data) {
    AVLNode_t* node = *place;
    if (node == nullptr) {
        *place = NewNode(AVLNode_t{1, 0, nullptr, nullptr, data});
        return *place == nullptr ? kNoMemory : kSuccess;
    }
    if (handle->CompareFunction(data, node->Data) < 0) {
        const int32_t right = RightHeight(node);
        if (InsertAt(handle, &node->Left, data) != kSuccess) return kFailure;
        SetHeights(node, node->Left->Height, right);
    } else {
        const int32_t left = LeftHeight(node);
        if (InsertAt(handle, &node->Right, data) != kSuccess) return kFailure;
        SetHeights(node, left, node->Right->Height);
    }
    handle->TreePlace.Known = false;  // the comparison that follows may read the tree, which has changed
    *place = BalanceAfterInsert(handle, node, data);
    return kSuccess;
}

status_t AVLTreeInsert(ContainerHandle_t handle, void* data) {
    if (data == nullptr) return kNullPointer;
    const status_t status = InsertAt(handle, &handle->AVLRoot, data);
    if (status != kSuccess) TRACE("AVLTreeInsert", kError, "\nNo Memory. ");
    handle->TreePlace.Known = false;
    return status;
}

// The subtree's root after an entry has left it. A balance that is out of bounds tells that the child is there, which
// an analysis of this function alone can't know.
// NOLINTBEGIN(clang-analyzer-core.NullDereference)
static AVLNode_t* BalanceAfterDelete(AVLNode_t* node) {
    if (node->Balance > 1) {
        if (node->Left->Balance < 0) node->Left = RotateLeft(node->Left);
        return RotateRight(node);
    }
    if (node->Balance < -1) {
        if (node->Right->Balance > 0) node->Right = RotateRight(node->Right);
        return RotateLeft(node);
    }
    return node;
}
// NOLINTEND(clang-analyzer-core.NullDereference)

// Removes the node at `place`, which has at most one child: it takes over all that the child is, and the child goes.
static void RemoveAt(AVLNode_t** place) {
    AVLNode_t* node = *place;
    AVLNode_t* leaving = node->Left != nullptr ? node->Left : node->Right;
    if (leaving != nullptr) {
        *node = *leaving;
        *place = BalanceAfterDelete(node);
    } else {
        *place = nullptr;
        leaving = node;
    }
    containerLibrary.Free(leaving);
}

// Removes the subtree's first node, and gives its Data. The node is taken by its place, as a search for the Data could
// end at an equal entry.
static void* TakeFirst(AVLNode_t** place) {
    AVLNode_t* node = *place;
    void* data = node->Data;
    if (node->Left == nullptr) {
        RemoveAt(place);
        return data;
    }
    const int32_t right = RightHeight(node);
    data = TakeFirst(&node->Left);
    SetHeights(node, Height(node->Left), right);
    *place = BalanceAfterDelete(node);
    return data;
}

// Status  1; 2 no such entry
static status_t DeleteAt(ContainerHandle_t handle, AVLNode_t** place, const void* data) {
    AVLNode_t* node = *place;
    if (node == nullptr) return kBadValue;
    const int32_t order = handle->CompareFunction(data, node->Data);
    status_t status = kSuccess;
    if (order < 0) {
        const int32_t right = RightHeight(node);
        status = DeleteAt(handle, &node->Left, data);
        SetHeights(node, Height(node->Left), right);
    } else if (order > 0) {
        const int32_t left = LeftHeight(node);
        status = DeleteAt(handle, &node->Right, data);
        SetHeights(node, left, Height(node->Right));
    } else if (node->Left != nullptr && node->Right != nullptr) {
        const int32_t left = LeftHeight(node);
        node->Data = TakeFirst(&node->Right);
        SetHeights(node, left, Height(node->Right));
    } else {
        RemoveAt(place);
        return kSuccess;
    }
    *place = BalanceAfterDelete(node);
    return status;
}

status_t AVLTreeDelete(ContainerHandle_t handle, void* data) {
    if (data == nullptr || handle->AVLRoot == nullptr) return kNullPointer;
    const status_t status = DeleteAt(handle, &handle->AVLRoot, data);
    if (status != kSuccess) TRACE("AVLTreeDelete", kError, "\nData not found. ");
    handle->TreePlace.Known = false;
    return status;
}

status_t AVLTreeRetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index) {
    if (handle->AVLRoot == nullptr) return kNullPointer;
    const AVLNode_t* absent = nullptr;
    const status_t status = RetrieveInOrder(&handle->TreePlace, handle->AVLRoot, absent, data, index);
    if (status == kBadValue) TRACE("AVLTreeRetrieveFromIndex", kError, "\n Invalid Index. ");
    return status;
}

status_t AVLTreeRetrieveFromEnd(ContainerHandle_t handle, void** data) {
    const AVLNode_t* node = handle->AVLRoot;
    if (node == nullptr) return kFailure;
    while (node->Right != nullptr) node = node->Right;
    *data = node->Data;
    return kSuccess;
}

status_t AVLTreeUpdateNode(ContainerHandle_t handle, void* oldData, void* newData) {
    if (oldData == nullptr || newData == nullptr) {
        TRACE("AVLTreeUpdateNode", kError, "\n Memory not allocated for data.");
        return kNullPointer;
    }
    const status_t deleted = AVLTreeDelete(handle, oldData);
    return deleted == kSuccess ? AVLTreeInsert(handle, newData) : deleted;
}
