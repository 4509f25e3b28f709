// Plain and sorted doubly linked lists.
#include "Packages/Container/Sources/ContainerRecord.h"

#define TRACE(function, level, ...) CONTAINER_TRACE("LinkedLists", function, level, __VA_ARGS__)

static void ForgetPlace(ContainerHandle_t handle) { handle->ListPlace.Node = nullptr; }

// Returns the node at an index below ListCount. Starts at the nearest of the first node, the last one and the known
// place.
static ListNode_t* NodeAt(ContainerHandle_t handle, size_t index) {
    ListPlace_t& place = handle->ListPlace;
    const size_t last = handle->ListCount - 1;
    const size_t fromPlace = place.Index < index ? index - place.Index : place.Index - index;
    if (place.Node == nullptr || fromPlace > index || fromPlace > last - index) {
        place = index <= last - index ? ListPlace_t{handle->Head, 0} : ListPlace_t{handle->Tail, last};
    }
    for (; place.Index < index; ++place.Index) place.Node = place.Node->Next;
    for (; place.Index > index; --place.Index) place.Node = place.Node->Prev;
    return place.Node;
}

static ListNode_t* NewListNode(const char* function, void* data) {
    ListNode_t* node = NewNode(ListNode_t{data, nullptr, nullptr});
    if (node == nullptr) TRACE(function, kTraceError, "\nNo Memory. ");
    return node;
}

// Links the node before `next`, or after the last node if `next` is null.
static void Link(ContainerHandle_t handle, ListNode_t* node, ListNode_t* next) {
    ForgetPlace(handle);
    node->Prev = next == nullptr ? handle->Tail : next->Prev;
    node->Next = next;
    (node->Prev == nullptr ? handle->Head : node->Prev->Next) = node;
    (next == nullptr ? handle->Tail : next->Prev) = node;
    ++handle->ListCount;
}

static void UnlinkAndFree(ContainerHandle_t handle, ListNode_t* node) {
    ForgetPlace(handle);
    (node->Prev == nullptr ? handle->Head : node->Prev->Next) = node->Next;
    (node->Next == nullptr ? handle->Tail : node->Next->Prev) = node->Prev;
    --handle->ListCount;
    containerLibrary.Free(node);
}

// Returns the first node that compares equal, or null.
static ListNode_t* Find(ContainerHandle_t handle, const void* data) {
    ListNode_t* node = handle->Head;
    while (node != nullptr && handle->CompareFunction(data, node->Data) != 0) node = node->Next;
    return node;
}

status_t LinkedListInit(ContainerHandle_t handle) {
    handle->Head = handle->Tail = nullptr;
    return kSuccess;
}

status_t LinkedListInsertAtIndex(ContainerHandle_t handle, void* data, int32_t index) {
    if (data == nullptr) return kNullPointer;
    if (index < 0 || static_cast<size_t>(index) > handle->ListCount) {
        TRACE("LinkedListInsertAtIndex", kTraceError, "\n Invalid Index. ");
        return kBadValue;
    }
    ListNode_t* node = NewListNode("LinkedListInsertAtIndex", data);
    if (node == nullptr) return kNoMemory;
    const auto place = static_cast<size_t>(index);
    Link(handle, node, place == handle->ListCount ? nullptr : NodeAt(handle, place));
    return kSuccess;
}

status_t LinkedListPush(ContainerHandle_t handle, void* data) {
    if (data == nullptr) return kNullPointer;
    ListNode_t* node = NewListNode("LinkedListPush", data);
    if (node == nullptr) return kNoMemory;
    Link(handle, node, nullptr);
    return kSuccess;
}

status_t ListRetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index) {
    if (handle->Head == nullptr) return kNullPointer;
    if (index < 0) {
        TRACE("ListRetrieveFromIndex", kTraceError, "\n Index is less than 0. ");
        return kBadValue;
    }
    if (static_cast<size_t>(index) >= handle->ListCount) return kFailure;
    *data = NodeAt(handle, static_cast<size_t>(index))->Data;
    return kSuccess;
}

status_t ListRetrieveFromEnd(ContainerHandle_t handle, void** data) {
    if (handle->Head == nullptr) {
        TRACE("ListRetrieveFromEnd", kTraceError, "\n Empty List. ");
        return kFailure;
    }
    *data = handle->Tail->Data;
    return kSuccess;
}

status_t ListDeleteAtIndex(ContainerHandle_t handle, int32_t index) {
    if (handle->Head == nullptr) return kNullPointer;
    if (index < 0) {
        TRACE("ListDeleteAtIndex", kTraceError, "\n Index is less than 0. ");
        return kBadValue;
    }
    if (static_cast<size_t>(index) >= handle->ListCount) {
        TRACE("ListDeleteAtIndex", kTraceError, "\n Invalid Index. ");
        return kBadValue;
    }
    UnlinkAndFree(handle, NodeAt(handle, static_cast<size_t>(index)));
    return kSuccess;
}

status_t ListDeleteByData(ContainerHandle_t handle, void* data) {
    if (data == nullptr || handle->CompareFunction == nullptr || handle->Head == nullptr) return kNullPointer;
    ListNode_t* node = Find(handle, data);
    if (node == nullptr) {
        TRACE("ListDeleteByData", kTraceError, "\n Data could not be found. ");
        return kBadValue;
    }
    UnlinkAndFree(handle, node);
    return kSuccess;
}

status_t ListPop(ContainerHandle_t handle, void** data) {
    if (handle->Head == nullptr) {
        TRACE("ListPop", kTraceError, "\n Empty List. ");
        return kFailure;
    }
    *data = handle->Tail->Data;
    UnlinkAndFree(handle, handle->Tail);
    return kSuccess;
}

status_t ListUpdateNode(ContainerHandle_t handle, void* oldData, void* newData) {
    if (oldData == nullptr || newData == nullptr) {
        TRACE("ListUpdateNode", kTraceError, "\n Memory not allocated for data.");
        return kNullPointer;
    }
    if (handle->CompareFunction == nullptr) {
        TRACE("ListUpdateNode", kTraceError, "\n Function POINTER not available.");
        return kNullPointer;
    }
    ListNode_t* node = Find(handle, oldData);
    if (node == nullptr) return kBadValue;
    node->Data = newData;
    return kSuccess;
}

status_t SortedLinkedListInit(ContainerHandle_t handle) {
    if (handle->CompareFunction == nullptr || handle->PositionFunction == nullptr) {
        TRACE("SortedLinkedListInit", kTraceError, "\n Function pointer for comparison needed. ");
        return kNullPointer;
    }
    return LinkedListInit(handle);
}

// Also notes the place, for the insertion that follows.
int32_t SortedListPosition(ContainerHandle_t handle, void* data) {
    ListPlace_t place = {handle->Head, 0};
    while (place.Node != nullptr && handle->CompareFunction(data, place.Node->Data) > 0) {
        place = {place.Node->Next, place.Index + 1};
    }
    handle->ListPlace = place;
    return static_cast<int32_t>(place.Index);
}

status_t SortedLinkedListInsert(ContainerHandle_t handle, void* data) {
    if (data == nullptr) return kNullPointer;
    return LinkedListInsertAtIndex(handle, data, handle->PositionFunction(handle, data));
}

status_t SortedLinkedListPush(ContainerHandle_t handle, void* data) {
    if (data == nullptr) return kNullPointer;
    ListNode_t* node = NewListNode("SortedLinkedListPush", data);
    if (node == nullptr) return kNoMemory;
    if (handle->Tail != nullptr && handle->CompareFunction(data, handle->Tail->Data) < 0) {
        containerLibrary.Free(node);
        TRACE("SortedLinkedListPush", kTraceError, "\n Invalid data. ");
        return kBadValue;
    }
    Link(handle, node, nullptr);
    return kSuccess;
}

status_t SortedListUpdateNode(ContainerHandle_t handle, void* oldData, void* newData) {
    if (oldData == nullptr || newData == nullptr) {
        TRACE("SortedListUpdateNode", kTraceError, "\n Memory not allocated for data.");
        return kNullPointer;
    }
    const status_t deleted = ListDeleteByData(handle, oldData);
    return deleted == kSuccess ? SortedLinkedListInsert(handle, newData) : deleted;
}
