#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <chrono>
#include <future>
#include <limits>
#include <sstream>
#include <thread>

#include "Tests/Packages/Container/Nodes.h"
#include "Tests/Support/Program.h"

namespace {

constexpr uint32_t kAllTypes[] = {kPlainList, kSortedList, kRedBlackTree, kAVLTree};

// Runs the words: 5 inserts an entry of key 5, -5 deletes one.
void Play(const ClContainer& container, std::vector<Entry_t>* entries, const std::string& words) {
    std::istringstream stream(words);
    entries->reserve(words.size());
    for (int key; stream >> key;) {
        Entry_t& entry = entries->emplace_back(Entry_t{std::abs(key)});
        EXPECT_EQ(key < 0 ? DeleteByData(container.handle, &entry) : Insert(container.handle, &entry), kSuccess) << key;
    }
}

// The model's tests check that distinct keys keep the trees balanced. Equal keys make a chain.
TEST(Trees, EqualKeysAreNotRotated) {
    const struct {
        const char* words;
        int32_t height, balance;
    } kCases[] = {
        {"5 5 5 5",   4, -3},
        {"7 5 5",     3, 2 },
        {"5 5 5 5 3", 3, 0 }, // the left child has no node to raise
    };
    for (const auto& c : kCases) {
        std::vector<Entry_t> entries;
        ClContainer container(kAVLTree);
        Play(container, &entries, c.words);
        EXPECT_EQ(container.handle->AVLRoot->Height, c.height) << c.words;
        EXPECT_EQ(container.handle->AVLRoot->Balance, c.balance) << c.words;
    }
}

// Its successor's data moves into it, and the successor's node goes.
TEST(Trees, DeletedNodeWithTwoChildrenKeepsItsAddress) {
    for (const uint32_t type : {kRedBlackTree, kAVLTree}) {
        std::vector<Entry_t> entries;
        ClContainer container(type);
        Play(container, &entries, "2 1 4 3 5");
        const void* root = container.handle->Head;
        EXPECT_EQ(DeleteByData(container.handle, &entries.front()), kSuccess);
        EXPECT_EQ(container.handle->Head, root);
        EXPECT_EQ(KeyOf(type == kAVLTree ? container.handle->AVLRoot->Data : container.handle->RBRoot->Data), 3);
        container.Check();
    }
}

TEST(Trees, RefuseMoreThan99PendingNodes) {
    std::array<AVLNode_t, kMostPendingNodes + 1> spine{};
    Entry_t entry{1};
    for (size_t i = 0; i < spine.size(); ++i)
        spine[i] = {1, 0, i > 0 ? &spine[i - 1] : nullptr, nullptr, nullptr, &entry};
    ClContainer container(kAVLTree);
    void* data = nullptr;
    container.handle->AVLRoot = &spine[kMostPendingNodes];
    EXPECT_EQ(RetrieveFromIndex(container.handle, &data, 0), kFailure);
    EXPECT_EQ(data, nullptr);
    container.handle->AVLRoot = &spine[kMostPendingNodes - 1];
    EXPECT_EQ(RetrieveFromIndex(container.handle, &data, 98), kSuccess);
    container.handle->AVLRoot = nullptr;
}

TEST(SortedList, TakesTheCallersPosition) {
    static int32_t position;
    ContainerParams_t params{"", kSortedList, kInt32Data, 1, nullptr, nullptr};
    params.PositionFunction = [](ContainerHandle_t, void*) { return position; };
    ContainerHandle_t handle = nullptr;
    ASSERT_EQ(InitContainer(&params, &handle, 0), kSuccess);
    int32_t value = 7, count = 0;
    for (const int32_t place : {-1, 1, 0, 2, 1, 0}) {
        position = place;
        const bool isValid = place >= 0 && place <= count;
        EXPECT_EQ(Insert(handle, &value), isValid ? kSuccess : kBadValue) << place;
        count += isValid;
    }
    for (void* data; count > 0; --count) EXPECT_EQ(Pop(handle, &data), kSuccess);
    EXPECT_EQ(UnInitContainer(handle), kSuccess);
}

TEST(Front, TheDataTypeChoosesTheComparison) {
    static const float kNaN = std::numeric_limits<float>::quiet_NaN(), kOne = 1, kTwo = 2;
    static const int32_t kLow = INT32_MIN, kHigh = INT32_MAX;
    static const int8_t kMinus = -1, kPlus = 1;
    const struct {
        uint32_t dataType;
        const void *first, *second;
        int32_t order, reversed;
    } kCases[] = {
        {kInt32Data,  &kHigh, &kLow,      1,  -1},
        {kInt32Data,  &kLow,  &kLow,      0,  0 },
        {kInt8Data,   &kPlus, &kMinus,    1,  -1},
        {kFloatData,  &kTwo,  &kOne,      1,  -1},
        {kFloatData,  &kOne,  &kOne,      0,  0 },
        {kFloatData,  &kNaN,  &kOne,      -1, -1},
        {kStringData, "ab",   "a",        1,  -1},
        {kStringData, "a",    "\xC3\xA4", -1, 1 }, // bytes, not signed characters
        {kStringData, "a",    "a",        0,  0 },
    };
    for (const auto& c : kCases) {
        ContainerParams_t params{"", kPlainList, c.dataType, 0, CompareKeys, nullptr};
        ContainerHandle_t handle = nullptr;
        ASSERT_EQ(InitContainer(&params, &handle, 0), kSuccess);
        EXPECT_NE(params.CompareFunction, CompareKeys);
        EXPECT_EQ(params.CompareFunction(c.first, c.second), c.order);
        EXPECT_EQ(params.CompareFunction(c.second, c.first), c.reversed);
        EXPECT_EQ(params.PositionFunction, SortedListPosition);
        EXPECT_EQ(UnInitContainer(handle), kSuccess);
    }
}

TEST(Front, InitContainerTellsWhatIsMissing) {
    const struct {
        const char* what;
        uint32_t type, dataType, ownPosition;
        status_t status;
    } kCases[] = {
        {"plain list without comparison",  kPlainList,    kOwnData,   0, 1},
        {"sorted list without comparison", kSortedList,   kOwnData,   0, 5},
        {"sorted list without position",   kSortedList,   kInt32Data, 1, 5},
        {"red-black without comparison",   kRedBlackTree, kOwnData,   0, 5},
        {"AVL without comparison",         kAVLTree,      kOwnData,   0, 5},
        {"no such kind",                   4,             kInt32Data, 0, 5},
    };
    for (const auto& c : kCases) {
        ContainerParams_t params{"", c.type, c.dataType, c.ownPosition, nullptr, nullptr};
        ContainerHandle_t handle = nullptr;
        const int32_t live = containerLibrary.LiveContainers;
        EXPECT_EQ(InitContainer(&params, &handle, 0), c.status) << c.what;
        EXPECT_EQ(containerLibrary.LiveContainers, live + (c.status == kSuccess)) << c.what;
        EXPECT_EQ(handle != nullptr, c.status == kSuccess) << c.what;
        if (c.status != kSuccess) continue;
        int32_t value = 0;
        EXPECT_EQ(Push(handle, &value), kSuccess);
        EXPECT_EQ(DeleteByData(handle, &value), kNullPointer);
        EXPECT_EQ(UpdateNode(handle, &value, &value), kNullPointer);
        EXPECT_EQ(DeleteAtIndex(handle, 0), kSuccess);
        EXPECT_EQ(UnInitContainer(handle), kSuccess);
    }
    ContainerHandle_t handle = nullptr;
    EXPECT_EQ(InitContainer(nullptr, &handle, 0), kNullPointer);
}

TEST(Front, NullHandlesTheVersionAndTheLongestName) {
    void* data = nullptr;
    int32_t value = 0;
    for (const status_t status :
         {Insert(nullptr, &value), InsertAtIndex(nullptr, &value, 0), RetrieveFromIndex(nullptr, &data, 0),
          RetrieveFromEnd(nullptr, &data), DeleteAtIndex(nullptr, 0), DeleteByData(nullptr, &value),
          Push(nullptr, &value), Pop(nullptr, &data), UpdateNode(nullptr, &value, &value), UnInitContainer(nullptr),
          GetContainerLibVersion(nullptr)}) {
        EXPECT_EQ(status, kNullPointer);
    }
    ContainerParams_t params{};
    ContainerHandle_t handle = nullptr;
    LibVersion_t version{};
    std::memset(params.ListName, 'n', sizeof params.ListName);  // without a NUL
    ASSERT_EQ(InitContainer(&params, &handle, 0), kSuccess);
    EXPECT_EQ(std::string(handle->ListName), std::string(127, 'n'));
    ASSERT_EQ(GetContainerLibVersion(&version), kSuccess);
    EXPECT_EQ(std::string(version.Major) + version.Minor + version.Revision + version.Build, "020001001");
    EXPECT_EQ(UnInitContainer(handle), kSuccess);
}

// Counts the allocations of the library; the one after `allowed` more fails.
struct {
    int allowed, live;
} heap;
void* CountedMalloc(size_t size) {
    if (heap.allowed-- == 0) return nullptr;
    ++heap.live;
    return os_NewBlock(size);
}
void CountedFree(void* block) {
    --heap.live;
    os_FreeBlock(block);
}

TEST(Memory, RunningOutLeavesWhatWasThere) {
    enum { kInsert, kInsertAtIndex, kPush, kUpdate };
    const struct {
        const char* what;
        uint32_t type;
        const char* words;
        int operation;
        status_t status;
        size_t left;
    } kCases[] = {
        {"plain, first",              kPlainList,    "2",     kInsertAtIndex, 3, 1},
        {"plain, last",               kPlainList,    "2",     kPush,          3, 1},
        {"sorted, between",           kSortedList,   "1 3",   kInsert,        3, 2},
        {"sorted, refused anyway",    kSortedList,   "1 3",   kPush,          3, 2},
        {"sorted, old entry is gone", kSortedList,   "1 2 3", kUpdate,        3, 2},
        {"red-black, root",           kRedBlackTree, "",      kInsert,        3, 0},
        {"red-black, deeper",         kRedBlackTree, "1 3",   kInsert,        3, 2},
        {"red-black, old is gone",    kRedBlackTree, "1 2 3", kUpdate,        3, 2},
        {"AVL, root",                 kAVLTree,      "",      kInsert,        3, 0},
        {"AVL, deeper",               kAVLTree,      "1",     kInsert,        5, 1},
        {"AVL, last old is gone",     kAVLTree,      "2",     kUpdate,        3, 0},
        {"AVL, old is gone",          kAVLTree,      "1 2 3", kUpdate,        5, 2},
    };
    heap = {-1, 0};
    containerLibrary.Malloc = CountedMalloc;
    containerLibrary.Free = CountedFree;
    for (const auto& c : kCases) {
        std::vector<Entry_t> entries;
        Entry_t entry{2};
        ClContainer container(c.type);
        Play(container, &entries, c.words);
        const std::vector<void*> before = container.Entries();
        heap.allowed = 0;
        const status_t status = c.operation == kInsert          ? Insert(container.handle, &entry)
                                : c.operation == kInsertAtIndex ? InsertAtIndex(container.handle, &entry, 0)
                                : c.operation == kPush          ? Push(container.handle, &entry)
                                                                : UpdateNode(container.handle, &entry, &entry);
        heap.allowed = -1;
        EXPECT_EQ(status, c.status) << c.what;
        EXPECT_EQ(container.Entries().size(), c.left) << c.what;
        EXPECT_TRUE(c.operation == kUpdate || container.Entries() == before) << c.what;
        container.Check();
    }
    heap.allowed = 0;
    ContainerParams_t params{};
    ContainerHandle_t handle = nullptr;
    const int32_t live = containerLibrary.LiveContainers;
    EXPECT_EQ(InitContainer(&params, &handle, 0), kNullPointer);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(containerLibrary.LiveContainers, live);
    EXPECT_EQ(heap.live, 0);
    containerLibrary.Malloc = os_malloc;
    containerLibrary.Free = os_FreeBlock;
}

// A comparison may read its own container by index and sees its present entries.
TEST(Place, IsForgottenBeforeAComparisonRuns) {
    static const ClContainer* compared;
    const auto compare = [](const void* first, const void* second) {
        const std::vector<void*> entries = compared->Entries();
        void* middle = nullptr;
        RetrieveFromIndex(compared->handle, &middle, static_cast<int32_t>(entries.size() / 2));
        EXPECT_EQ(middle, entries[entries.size() / 2]);
        return CompareKeys(first, second);
    };
    for (const uint32_t type : kAllTypes) {
        std::vector<Entry_t> entries;
        ClContainer container(type, compare);
        compared = &container;
        Play(container, &entries, "9 8 7 6 5 4 3 2 1 -9 -5");
    }
}

// So a read of all entries by rising index is linear. A read from the middle starts again and is right too.
TEST(Place, EachReadContinuesFromTheLast) {
    std::vector<Entry_t> entries(200);
    for (size_t i = 0; i < entries.size(); ++i) entries[i].Key = static_cast<int32_t>(i);
    for (const uint32_t type : kAllTypes) {
        ClContainer container(type);
        const ContainerRecord_t& record = *container.handle;
        for (Entry_t& entry : entries) ASSERT_EQ(Insert(container.handle, &entry), kSuccess);
        void* data = nullptr;
        for (const size_t first : {size_t{0}, size_t{90}, size_t{10}}) {
            for (size_t i = first; i < entries.size(); ++i) {
                EXPECT_EQ(RetrieveFromIndex(container.handle, &data, static_cast<int32_t>(i)), kSuccess);
                EXPECT_EQ(data, &entries[i]);
                EXPECT_EQ(container.IsTree() ? static_cast<size_t>(record.TreePlace.Index) : record.ListPlace.Index, i);
            }
        }
        container.Check();
    }
}

TEST(Lock, FourThreadsOnOneHandle) {
    static std::atomic<bool> inside;
    const auto compare = [](const void* first, const void* second) {
        EXPECT_FALSE(inside.exchange(true));
        const int32_t order = CompareKeys(first, second);
        inside = false;
        return order;
    };
    for (const uint32_t type : kAllTypes) {
        std::vector<Entry_t> entries(800);
        ClContainer container(type, compare);
        std::vector<std::thread> threads;
        for (size_t first = 0; first < 4; ++first) {
            threads.emplace_back([&, first] {
                void* data;
                for (size_t i = first; i < entries.size(); i += 4) {
                    entries[i].Key = static_cast<int32_t>(i);
                    EXPECT_EQ(Insert(container.handle, &entries[i]), kSuccess);
                    EXPECT_EQ(RetrieveFromIndex(container.handle, &data, static_cast<int32_t>(i / 8)), kSuccess);
                    EXPECT_TRUE(i / 4 % 2 == 0 || DeleteByData(container.handle, &entries[i]) == kSuccess);
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(container.Entries().size(), 400u);
        container.Check();
    }
}

// Inserts into the other container on another thread while the first container compares.
ContainerHandle_t other;
std::future<status_t> insertion;
bool waited;
int32_t CompareSlowly(const void* first, const void* second) {
    static Entry_t entry{1};
    insertion = std::async(std::launch::async, [] { return Insert(other, &entry); });
    waited = insertion.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout;
    return CompareKeys(first, second);
}

TEST(Lock, ContainersOfOneNameExcludeEachOther) {
    for (const bool sameName : {true, false}) {
        std::vector<Entry_t> entries;
        ClContainer second(kPlainList, CompareKeys, sameName ? "ContainerTest" : "ContainerTestOther");
        ClContainer first(kRedBlackTree, CompareSlowly);
        other = second.handle;
        Play(first, &entries, "1 2");
        EXPECT_EQ(insertion.get(), kSuccess);
        EXPECT_EQ(waited, sameName);
        EXPECT_EQ(second.Entries().size(), 1u);
        first.handle->CompareFunction = CompareKeys;
    }
}

// A chain of equal entries, on a thread whose stack has no room for a call for each.
TEST(Trees, EqualEntriesTakeNoStack) {
    constexpr size_t kStack = size_t{256} << 10;
    constexpr int kEntries = 8'000;
    const auto fillAndEmpty = [](void*) -> void* {
        std::vector<Entry_t> entries(kEntries, Entry_t{5});
        ClContainer container(kAVLTree);
        for (Entry_t& entry : entries) EXPECT_EQ(Insert(container.handle, &entry), kSuccess);
        void* last = nullptr;
        EXPECT_EQ(RetrieveFromEnd(container.handle, &last), kSuccess);
        EXPECT_EQ(last, &entries.back());
        for (Entry_t& entry : entries) EXPECT_EQ(DeleteByData(container.handle, &entry), kSuccess);
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, fillAndEmpty, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

// The page contains the example and its output.
TEST(Docs, TheExampleDoesAsThePageSays) {
    const std::string page = ReadWholeFile(QUORLIN_SOURCE_DIR "/Docs/Containers.md");
    const std::string program = ReadWholeFile(QUORLIN_SOURCE_DIR "/Docs/examples/containers.cpp");
    const std::string outputFile = testing::TempDir() + "example_containers.out";
    ASSERT_EQ(std::system((QUORLIN_EXAMPLES "/example_containers >" + outputFile).c_str()), 0);
    std::string output = ReadWholeFile(outputFile);
    std::erase(output, '\r');
    EXPECT_NE(page.find("```cpp\n" + program + "```\n"), std::string::npos);
    EXPECT_FALSE(output.empty());
    EXPECT_NE(page.find("```\n" + output + "```\n"), std::string::npos) << output;
}

}  // namespace
