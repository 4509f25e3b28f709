// Creates and destroys containers, and calls the kind's function of each operation under the lock.
#include "Packages/Container/Container.h"

#include <iterator>

#include "Packages/Container/Sources/ContainerRecord.h"

#define TRACE(function, level, ...) CONTAINER_TRACE("Container", function, level, __VA_ARGS__)

ContainerLibrary_t containerLibrary = {0, false, nullptr, os_malloc, os_free};

static constexpr LibVersion_t kVersion = {"02", "00", "0", "1001"};

struct ContainerKind_t {
    status_t (*Init)(ContainerHandle_t handle);
    ContainerOperations_t Operations;
};

// By ContainerType_t. The kind doesn't have operations that are null.
// clang-format off
static constexpr ContainerKind_t kKinds[] = {
//  Init
//   InsertAtIndex            Insert                  RetrieveFromIndex
//   RetrieveFromEnd          DeleteAtIndex           DeleteByData
//   Push                     Pop                     UpdateNode
    {LinkedListInit,
     {LinkedListInsertAtIndex, LinkedListPush,         ListRetrieveFromIndex,
      ListRetrieveFromEnd,     ListDeleteAtIndex,      ListDeleteByData,
      LinkedListPush,          ListPop,                ListUpdateNode}},
    {SortedLinkedListInit,
     {nullptr,                 SortedLinkedListInsert, ListRetrieveFromIndex,
      ListRetrieveFromEnd,     ListDeleteAtIndex,      ListDeleteByData,
      SortedLinkedListPush,    ListPop,                SortedListUpdateNode}},
    {RBTreeInit,
     {nullptr,                 RBTreeInsert,           RBTreeRetrieveFromIndex,
      RBTreeRetrieveFromEnd,   nullptr,                RBTreeDelete,
      nullptr,                 nullptr,                RBTreeUpdateNode}},
    {AVLTreeInit,
     {nullptr,                 AVLTreeInsert,          AVLTreeRetrieveFromIndex,
      AVLTreeRetrieveFromEnd,  nullptr,                AVLTreeDelete,
      nullptr,                 nullptr,                AVLTreeUpdateNode}},
};
// clang-format on

template <class Value_t>
static int32_t CompareValues(const void* first, const void* second) {
    const Value_t a = *static_cast<const Value_t*>(first), b = *static_cast<const Value_t*>(second);
    return a > b ? 1 : a == b ? 0 : -1;
}

static int32_t CompareStrings(const void* first, const void* second) {
    const int order = os_strcmp(static_cast<const char*>(first), static_cast<const char*>(second));
    return order > 0 ? 1 : order == 0 ? 0 : -1;
}

// By ContainerDataType_t
static constexpr ContainerCompare_t kCompareFunctions[] = {CompareValues<int32_t>, CompareValues<int8_t>,
                                                           CompareValues<float>, CompareStrings};

// Only reads while no trace is set, as containers come and go on several threads at once.
static void CloseTrace() {
    if (containerLibrary.Trace != nullptr) containerLibrary.Trace = nullptr;
}

static status_t InitFailed(const char* problem) {
    TRACE("InitContainer", kTraceError, "%s", problem);
    TRACE("InitContainer", kTraceExit, "\n return status : 0x%x", kNullPointer);
    CloseTrace();
    return kNullPointer;
}

// For a handle that exists already. Its kind has traced why it failed.
static status_t InitFailed(ContainerHandle_t made) {
    containerLibrary.Free(made);
    CloseTrace();
    return kFailure;
}

static NamedLock_t* CreateLock(const ContainerParams_t& params) {
    char name[sizeof params.ListName + 1];  // room for a name without its NUL
    os_strncpy(name, params.ListName, sizeof params.ListName);
    return os_OpenNamedLock(name);
}

status_t InitContainer(ContainerParams_t* params, ContainerHandle_t* handle, uint8_t) {
    containerLibrary.IsUsed = true;
    if (params == nullptr) return InitFailed("\n Memory not allocated for container params handle. ");
    if (params->DataType < std::size(kCompareFunctions)) params->CompareFunction = kCompareFunctions[params->DataType];
    if (params->OwnPositionFunction == 0) params->PositionFunction = SortedListPosition;

    ContainerHandle_t made = NewNode(ContainerRecord_t{});
    if (made == nullptr) return InitFailed("\n ContainerHandle_t is NULL. ");
    os_strncpy(made->ListName, params->ListName, sizeof made->ListName - 1);
    made->ContainerType = params->ContainerType;
    made->DataType = params->DataType;
    made->OwnPositionFunction = params->OwnPositionFunction;
    made->CompareFunction = params->CompareFunction;
    made->PositionFunction = params->PositionFunction;

    if (params->ContainerType >= std::size(kKinds) || kKinds[params->ContainerType].Init(made) != kSuccess)
        return InitFailed(made);
    made->Operations = kKinds[params->ContainerType].Operations;
    made->Lock = CreateLock(*params);
    if (made->Lock == nullptr) return InitFailed(made);
    *handle = made;
    ++containerLibrary.LiveContainers;
    TRACE("InitContainer", kTraceExit, "\n return status : 0x%x", kSuccess);
    return kSuccess;
}

status_t UnInitContainer(ContainerHandle_t handle) {
    if (handle == nullptr) return kNullPointer;
    TRACE("UnInitContainer", kTraceEntry, "\n( List Name: %s) Entered Function %s", handle->ListName,
          "UnInitContainer");
    char name[sizeof handle->ListName];
    os_strncpy(name, handle->ListName, sizeof name - 1);
    os_CloseNamedLock(handle->Lock);
    containerLibrary.Free(handle);
    TRACE("UnInitContainer", kTraceExit, "\n( List Name: %s) return status : 0x%x", name, kSuccess);
    if (--containerLibrary.LiveContainers == 0) CloseTrace();
    return kSuccess;
}

// Runs the operation in `slot` under the container's lock. A lock whose holder died is as good as any: that process
// didn't touch the nodes in this one.
template <class... Arguments_t, class... Values_t>
static status_t Run(ContainerHandle_t handle, const char* name,
                    status_t (*ContainerOperations_t::*slot)(ContainerHandle_t, Arguments_t...), Values_t... values) {
    if (handle == nullptr) return kNullPointer;
    TRACE(name, kTraceEntry, "\n( List Name: %s) Entered Function %s", handle->ListName, name);
    const auto operation = handle->Operations.*slot;
    status_t status = kFailure;
    if (operation == nullptr) {
        TRACE(name, kTraceError, "\n( List Name: %s) %s Function failed. ", handle->ListName, name);
    } else if (!os_TakeNamedLock(handle->Lock)) {
        TRACE(name, kTraceError, "\n( List Name: %s) %s can't take the lock. ", handle->ListName, name);
    } else {
        status = operation(handle, values...);
        os_ReleaseNamedLock(handle->Lock);
    }
    TRACE(name, kTraceExit, "\n( List Name: %s) return status : 0x%x", handle->ListName, status);
    return status;
}

status_t InsertAtIndex(ContainerHandle_t handle, void* data, int32_t index) {
    return Run(handle, "InsertAtIndex", &ContainerOperations_t::InsertAtIndex, data, index);
}

status_t Insert(ContainerHandle_t handle, void* data) {
    return Run(handle, "Insert", &ContainerOperations_t::Insert, data);
}

status_t RetrieveFromIndex(ContainerHandle_t handle, void** data, int32_t index) {
    return Run(handle, "RetrieveFromIndex", &ContainerOperations_t::RetrieveFromIndex, data, index);
}

status_t RetrieveFromEnd(ContainerHandle_t handle, void** data) {
    return Run(handle, "RetrieveFromEnd", &ContainerOperations_t::RetrieveFromEnd, data);
}

status_t DeleteAtIndex(ContainerHandle_t handle, int32_t index) {
    return Run(handle, "DeleteAtIndex", &ContainerOperations_t::DeleteAtIndex, index);
}

status_t DeleteByData(ContainerHandle_t handle, void* data) {
    return Run(handle, "DeleteByData", &ContainerOperations_t::DeleteByData, data);
}

status_t Push(ContainerHandle_t handle, void* data) { return Run(handle, "Push", &ContainerOperations_t::Push, data); }

status_t Pop(ContainerHandle_t handle, void** data) { return Run(handle, "Pop", &ContainerOperations_t::Pop, data); }

status_t UpdateNode(ContainerHandle_t handle, void* oldData, void* newData) {
    return Run(handle, "UpdateNode", &ContainerOperations_t::UpdateNode, oldData, newData);
}

status_t GetContainerLibVersion(LibVersion_t* version) {
    if (version == nullptr) return kNullPointer;
    *version = containerLibrary.IsUsed ? kVersion : LibVersion_t{};
    return kSuccess;
}
