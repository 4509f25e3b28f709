// Reads a container's nodes directly and checks the invariants of each kind.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Packages/Container/Sources/ContainerRecord.h"

struct Entry_t {
    int32_t Key;  // first, so that an entry also reads as the integer of kInt32Data
    int Serial = 0;
};

inline int32_t KeyOf(const void* data) { return static_cast<const Entry_t*>(data)->Key; }
inline int32_t CompareKeys(const void* first, const void* second) { return KeyOf(first) - KeyOf(second); }

// A container that is emptied and closed at the end. Declare its entries before it.
class ClContainer {
  public:
    explicit ClContainer(uint32_t type, ContainerCompare_t compare = CompareKeys, const char* name = "ContainerTest") {
        ContainerParams_t params{};
        os_snprintf(params.ListName, sizeof params.ListName, sizeof params.ListName - 1, "%s", name);
        params.ContainerType = type;
        params.DataType = kOwnData;
        params.CompareFunction = compare;
        EXPECT_EQ(InitContainer(&params, &handle, 0), kSuccess);
    }
    ClContainer(const ClContainer&) = delete;
    ClContainer& operator=(const ClContainer&) = delete;
    ~ClContainer() {
        for (void* data : Entries())
            EXPECT_EQ(IsTree() ? DeleteByData(handle, data) : DeleteAtIndex(handle, 0), kSuccess);
        EXPECT_EQ(UnInitContainer(handle), kSuccess);
    }
    bool IsTree() const { return handle->ContainerType >= kRedBlackTree; }
    std::vector<void*> Entries() const;           // in order
    void Check(bool hasEqualKeys = false) const;  // the kind's invariants

    ContainerHandle_t handle = nullptr;
};

template <class Node_t, class Visit_t>
void InOrder(const Node_t* node, const Node_t* absent, const Visit_t& visit) {
    if (node == absent) return;
    InOrder(node->Left, absent, visit);
    visit(node);
    InOrder(node->Right, absent, visit);
}

inline std::vector<void*> ClContainer::Entries() const {
    std::vector<void*> entries;
    const auto keep = [&](const auto* node) { entries.push_back(node->Data); };
    if (handle->ContainerType == kRedBlackTree)
        InOrder<RBNode_t>(handle->RBRoot, &handle->Sentinel, keep);
    else if (handle->ContainerType == kAVLTree)
        InOrder<AVLNode_t>(handle->AVLRoot, nullptr, keep);
    else
        for (const ListNode_t* node = handle->Head; node != nullptr; node = node->Next) keep(node);
    return entries;
}

inline void CheckList(const ContainerRecord_t& list) {
    const ListNode_t* previous = nullptr;
    size_t count = 0;
    for (const ListNode_t* node = list.Head; node != nullptr; node = node->Next, ++count) {
        ASSERT_EQ(node->Prev, previous);
        previous = node;
    }
    ASSERT_EQ(list.Tail, previous);
    ASSERT_EQ(list.ListCount, count);
}

// Returns the number of black nodes on each path down from `node`.
inline int CheckRB(const RBNode_t* node, const RBNode_t* absent) {
    if (node == absent) return 0;
    for (const RBNode_t* child : {node->Left, node->Right}) {
        if (child == absent) continue;
        EXPECT_EQ(child->Parent, node);
        EXPECT_FALSE(node->Color == kRed && child->Color == kRed);
    }
    const int left = CheckRB(node->Left, absent), right = CheckRB(node->Right, absent);
    EXPECT_EQ(left, right);
    return left + (node->Color == kBlack);
}

inline int32_t CheckAVL(const AVLNode_t* node, bool hasEqualKeys) {
    if (node == nullptr) return 0;
    const int32_t left = CheckAVL(node->Left, hasEqualKeys), right = CheckAVL(node->Right, hasEqualKeys);
    EXPECT_TRUE(hasEqualKeys || std::abs(node->Balance) <= 1);
    EXPECT_EQ(node->Height, std::max(left, right) + 1);
    EXPECT_EQ(node->Balance, left - right);
    return node->Height;
}

inline void ClContainer::Check(bool hasEqualKeys) const {
    if (handle->ContainerType == kRedBlackTree) {
        const RBNode_t& sentinel = handle->Sentinel;
        EXPECT_EQ(handle->RBRoot->Color, kBlack);
        EXPECT_TRUE(handle->RBRoot == &sentinel || handle->RBRoot->Parent == &sentinel);
        EXPECT_TRUE(sentinel.Color == kBlack && sentinel.Data == nullptr && sentinel.Left == nullptr &&
                    sentinel.Right == nullptr && sentinel.Parent == nullptr);
        CheckRB(handle->RBRoot, &sentinel);
    } else if (handle->ContainerType == kAVLTree) {
        CheckAVL(handle->AVLRoot, hasEqualKeys);
    } else {
        CheckList(*handle);
    }
}
