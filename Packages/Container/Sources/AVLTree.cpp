// The AVL tree: the heights of a node's subtrees differ by at most 1 if all keys are distinct. Equal keys are in the
// order of insertion and cause no rotations, so many of them make a long chain. Therefore nothing here recurses.
#include <algorithm>

#include "Packages/Container/Sources/ContainerRecord.h"

#define TRACE(function, level, ...) CONTAINER_TRACE("AVLTree", function, level, __VA_ARGS__)

static int32_t Height(const AVLNode_t* node) { return node == nullptr ? 0 : node->Height; }

// The heights of a node's subtrees, without visiting the children.
static int32_t LeftHeight(const AVLNode_t* node) { return node->Height - 1 + std::min(node->Balance, 0); }
static int32_t RightHeight(const AVLNode_t* node) { return node->Height - 1 - std::max(node->Balance, 0); }

static void SetHeights(AVLNode_t* node, int32_t left, int32_t right) {
    node->Height = std::max(left, right) + 1;
    node->Balance = left - right;
}

// Returns the pointer to a node: a child pointer of its parent, or the root.
static AVLNode_t** PlaceOf(ContainerHandle_t handle, const AVLNode_t* node) {
    AVLNode_t* parent = node->Parent;
    return parent == nullptr ? &handle->AVLRoot : parent->Left == node ? &parent->Left : &parent->Right;
}

static void SetParent(AVLNode_t* node, AVLNode_t* parent) {
    if (node != nullptr) node->Parent = parent;
}

// Both rotations return the subtree's new root, or the old one if it has no child to raise. The caller updates the
// pointer to the subtree.
static AVLNode_t* RotateRight(AVLNode_t* node) {
    AVLNode_t* risen = node->Left;
    if (risen == nullptr) return node;
    const int32_t outer = LeftHeight(risen), inner = RightHeight(risen);
    risen->Parent = node->Parent;
    node->Parent = risen;
    node->Left = risen->Right;
    SetParent(node->Left, node);
    risen->Right = node;
    SetHeights(node, inner, RightHeight(node));
    SetHeights(risen, outer, node->Height);
    return risen;
}

static AVLNode_t* RotateLeft(AVLNode_t* node) {
    AVLNode_t* risen = node->Right;
    if (risen == nullptr) return node;
    const int32_t outer = RightHeight(risen), inner = LeftHeight(risen);
    risen->Parent = node->Parent;
    node->Parent = risen;
    node->Right = risen->Left;
    SetParent(node->Right, node);
    risen->Left = node;
    SetHeights(node, LeftHeight(node), inner);
    SetHeights(risen, node->Height, outer);
    return risen;
}

status_t AVLTreeInit(ContainerHandle_t handle) {
    if (handle->CompareFunction == nullptr) {
        TRACE("AVLTreeInit", kTraceError, "\n Function pOINTER for comparison needed. ");
        return kNullPointer;
    }
    handle->AVLRoot = nullptr;
    return kSuccess;
}

// Returns the subtree's root after the insertion of `data`. Data equal to the child's causes no rotation.
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

// Sets the height of a node after the height of its left or right subtree changed.
static void SetHeightsAfter(AVLNode_t* node, bool isLeft) {
    if (isLeft)
        SetHeights(node, Height(node->Left), RightHeight(node));
    else
        SetHeights(node, LeftHeight(node), Height(node->Right));
}

// Status  1; 3 out of memory in an empty tree; 5 out of memory in another
static status_t InsertData(ContainerHandle_t handle, void* data) {
    AVLNode_t *parent = nullptr, **place = &handle->AVLRoot;
    while (*place != nullptr) {
        parent = *place;
        place = handle->CompareFunction(data, parent->Data) < 0 ? &parent->Left : &parent->Right;
    }
    AVLNode_t* node = NewNode(AVLNode_t{1, 0, nullptr, nullptr, parent, data});
    if (node == nullptr) return parent == nullptr ? kNoMemory : kFailure;
    *place = node;
    for (; parent != nullptr; parent = node->Parent) {
        SetHeightsAfter(parent, parent->Left == node);
        handle->TreePlace.Known = false;  // the compare function may read the tree, which has changed
        AVLNode_t** top = PlaceOf(handle, parent);
        *top = node = BalanceAfterInsert(handle, parent, data);
    }
    return kSuccess;
}

status_t AVLTreeInsert(ContainerHandle_t handle, void* data) {
    if (data == nullptr) return kNullPointer;
    const status_t status = InsertData(handle, data);
    if (status != kSuccess) TRACE("AVLTreeInsert", kTraceError, "\nNo Memory. ");
    handle->TreePlace.Known = false;
    return status;
}

// Returns the subtree's root after a removal. A balance out of bounds implies that the child exists, which the analyzer
// can't know.
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

// Balances the node and all nodes above it, after the height of the node's subtree on this side changed.
static void BalanceUpwards(ContainerHandle_t handle, AVLNode_t* node, bool isLeft) {
    while (node != nullptr) {
        SetHeightsAfter(node, isLeft);
        AVLNode_t** place = PlaceOf(handle, node);
        *place = node = BalanceAfterDelete(node);
        AVLNode_t* parent = node->Parent;
        isLeft = parent != nullptr && parent->Left == node;
        node = parent;
    }
}

// Removes a node that has at most one child. If it has one, the node takes over the child's content, and the child is
// freed in its place.
static void Remove(ContainerHandle_t handle, AVLNode_t* node) {
    AVLNode_t** place = PlaceOf(handle, node);
    AVLNode_t* const parent = node->Parent;
    const bool isLeft = parent != nullptr && parent->Left == node;
    AVLNode_t* leaving = node->Left != nullptr ? node->Left : node->Right;
    if (leaving != nullptr) {
        *node = *leaving;
        node->Parent = parent;
        SetParent(node->Left, node);
        SetParent(node->Right, node);
        *place = BalanceAfterDelete(node);
    } else {
        *place = nullptr;
        leaving = node;
    }
    containerLibrary.Free(leaving);
    BalanceUpwards(handle, parent, isLeft);
}

// Status  1; 2 no such entry. The nodes on the way are balanced even then: insertions may have left some unbalanced.
static status_t DeleteData(ContainerHandle_t handle, const void* data) {
    AVLNode_t *node = handle->AVLRoot, *parent = nullptr;
    int32_t order = 0;
    while (node != nullptr) {
        order = handle->CompareFunction(data, node->Data);
        if (order == 0) break;
        parent = node;
        node = order < 0 ? node->Left : node->Right;
    }
    if (node == nullptr) {
        BalanceUpwards(handle, parent, order < 0);
        return kBadValue;
    }
    if (node->Left != nullptr && node->Right != nullptr) {
        // Takes the next entry by its place: a search for its data could end at an equal one.
        AVLNode_t* next = node->Right;
        while (next->Left != nullptr) next = next->Left;
        node->Data = next->Data;
        node = next;
    }
    Remove(handle, node);
    return kSuccess;
}

status_t AVLTreeDelete(ContainerHandle_t handle, void* data) {
    if (data == nullptr || handle->AVLRoot == nullptr) return kNullPointer;
    const status_t status = DeleteData(handle, data);
    if (status != kSuccess) TRACE("AVLTreeDelete", kTraceError, "\nData not found. ");
    handle->TreePlace.Known = false;
    return status;
}

status_t AVLTreeRetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index) {
    if (handle->AVLRoot == nullptr) return kNullPointer;
    const AVLNode_t* absent = nullptr;
    const status_t status = RetrieveInOrder(&handle->TreePlace, handle->AVLRoot, absent, data, index);
    if (status == kBadValue) TRACE("AVLTreeRetrieveFromIndex", kTraceError, "\n Invalid Index. ");
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
        TRACE("AVLTreeUpdateNode", kTraceError, "\n Memory not allocated for data.");
        return kNullPointer;
    }
    const status_t deleted = AVLTreeDelete(handle, oldData);
    return deleted == kSuccess ? AVLTreeInsert(handle, newData) : deleted;
}
