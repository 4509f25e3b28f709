// The red-black tree: the root is black, no red node has a red child, and all paths from a node down to the sentinel
// have the same number of black nodes. Equal keys are in the order of insertion.
#include <utility>

#include "Packages/Container/Sources/ContainerRecord.h"

#define TRACE(function, level, ...) CONTAINER_TRACE("RBTree", function, level, __VA_ARGS__)

// A child pointer of a node, so that each step and its mirror image are written once.
using Side_t = RBNode_t* RBNode_t::*;
static constexpr Side_t kLeft = &RBNode_t::Left, kRight = &RBNode_t::Right;
static Side_t Other(Side_t side) { return side == kLeft ? kRight : kLeft; }
static Side_t SideOf(const RBNode_t* node) { return node == node->Parent->Left ? kLeft : kRight; }

// Makes the parent of `old` point to `node`, which may be the sentinel. Doesn't change the Parent of `node`.
static void PutInPlaceOf(ContainerHandle_t handle, const RBNode_t* old, RBNode_t* node) {
    if (old == handle->RBRoot)
        handle->RBRoot = node;
    else
        old->Parent->*SideOf(old) = node;
}

// Rotates towards `side`. For kLeft the right child takes the node's place, and the node becomes its left child.
static void Rotate(ContainerHandle_t handle, RBNode_t* node, Side_t side) {
    RBNode_t* risen = node->*Other(side);
    RBNode_t* moved = risen->*side;
    node->*Other(side) = moved;
    if (moved != &handle->Sentinel) moved->Parent = node;
    PutInPlaceOf(handle, node, risen);
    risen->Parent = node->Parent;
    risen->*side = node;
    node->Parent = risen;
}

status_t RBTreeInit(ContainerHandle_t handle) {
    if (handle->CompareFunction == nullptr) {
        TRACE("RBTreeInit", kTraceError, "\n Function pOINTER for comparison needed. ");
        return kNullPointer;
    }
    handle->Sentinel = {nullptr, nullptr, nullptr, kBlack, nullptr};
    handle->RBRoot = &handle->Sentinel;
    return kSuccess;
}

// `node` is red, and its parent may be red too.
static void FixAfterInsert(ContainerHandle_t handle, RBNode_t* node) {
    while (node != handle->RBRoot && node->Parent->Color == kRed) {
        RBNode_t* parent = node->Parent;
        RBNode_t* grandparent = parent->Parent;
        const Side_t side = SideOf(parent);
        RBNode_t* uncle = grandparent->*Other(side);
        if (uncle->Color == kRed) {
            parent->Color = uncle->Color = kBlack;
            grandparent->Color = kRed;
            node = grandparent;
            continue;
        }
        if (node == parent->*Other(side)) {
            Rotate(handle, parent, side);
            std::swap(node, parent);
        }
        parent->Color = kBlack;
        grandparent->Color = kRed;
        Rotate(handle, grandparent, Other(side));
    }
    handle->RBRoot->Color = kBlack;
    handle->RBRoot->Parent = &handle->Sentinel;
}

status_t RBTreeInsert(ContainerHandle_t handle, void* data) {
    if (data == nullptr) return kNullPointer;
    RBNode_t* parent = &handle->Sentinel;
    RBNode_t** link = &handle->RBRoot;
    while (*link != &handle->Sentinel) {
        parent = *link;
        link = handle->CompareFunction(data, parent->Data) < 0 ? &parent->Left : &parent->Right;
    }
    RBNode_t* node = NewNode(RBNode_t{&handle->Sentinel, &handle->Sentinel, parent, kRed, data});
    if (node == nullptr) {
        TRACE("RBTreeInsert", kTraceError, "\nNo Memory. ");
        return kNoMemory;
    }
    *link = node;
    FixAfterInsert(handle, node);
    handle->TreePlace.Known = false;
    return kSuccess;
}

// The paths through `node`, which may be the sentinel, have one black node too few.
static void FixAfterDelete(ContainerHandle_t handle, RBNode_t* node) {
    while (node != handle->RBRoot && node->Color == kBlack) {
        RBNode_t* parent = node->Parent;
        const Side_t side = SideOf(node);
        RBNode_t* sibling = parent->*Other(side);
        if (sibling->Color == kRed) {
            sibling->Color = kBlack;
            parent->Color = kRed;
            Rotate(handle, parent, side);
            sibling = parent->*Other(side);
        }
        if (sibling->Left->Color == kBlack && sibling->Right->Color == kBlack) {
            sibling->Color = kRed;
            node = parent;
            continue;
        }
        if ((sibling->*Other(side))->Color == kBlack) {
            (sibling->*side)->Color = kBlack;
            sibling->Color = kRed;
            Rotate(handle, sibling, Other(side));
            sibling = parent->*Other(side);
        }
        sibling->Color = parent->Color;
        parent->Color = kBlack;
        (sibling->*Other(side))->Color = kBlack;
        Rotate(handle, parent, side);
        node = handle->RBRoot;
    }
    node->Color = kBlack;
}

status_t RBTreeDelete(ContainerHandle_t handle, void* data) {
    if (data == nullptr || handle->RBRoot == nullptr) return kNullPointer;
    RBNode_t* const absent = &handle->Sentinel;
    RBNode_t* found = handle->RBRoot;
    while (found != absent) {
        const int32_t order = handle->CompareFunction(data, found->Data);
        if (order == 0) break;
        found = order < 0 ? found->Left : found->Right;
    }
    if (found == absent) return kFailure;

    RBNode_t* leaving = found;
    if (found->Left != absent && found->Right != absent) {
        leaving = found->Right;
        while (leaving->Left != absent) leaving = leaving->Left;
    }
    RBNode_t* child = leaving->Left != absent ? leaving->Left : leaving->Right;
    child->Parent = leaving->Parent;
    PutInPlaceOf(handle, leaving, child);
    found->Data = leaving->Data;  // `found` stays where it is
    if (leaving->Color == kBlack) FixAfterDelete(handle, child);
    absent->Parent = nullptr;
    handle->TreePlace.Known = false;
    containerLibrary.Free(leaving);
    return kSuccess;
}

status_t RBTreeRetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index) {
    if (handle->RBRoot == nullptr) return kNullPointer;
    return RetrieveInOrder(&handle->TreePlace, handle->RBRoot, &handle->Sentinel, data, index);
}

// Reads the sentinel's Data, which is null, from an empty tree.
status_t RBTreeRetrieveFromEnd(ContainerHandle_t handle, void** data) {
    const RBNode_t* node = handle->RBRoot;
    while (node != &handle->Sentinel && node->Right != &handle->Sentinel) node = node->Right;
    *data = node->Data;
    return kSuccess;
}

status_t RBTreeUpdateNode(ContainerHandle_t handle, void* oldData, void* newData) {
    if (oldData == nullptr || newData == nullptr) {
        TRACE("RBTreeUpdateNode", kTraceError, "\n Memory not allocated for data.");
        return kNullPointer;
    }
    const status_t deleted = RBTreeDelete(handle, oldData);
    return deleted == kSuccess ? RBTreeInsert(handle, newData) : deleted;
}
