#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <atomic>
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
    const std::pair<int32_t, status_t> kCases[] = {
        {-1, kBadValue},
        {1,  kBadValue},
        {0,  kSuccess },
        {2,  kBadValue},
        {1,  kSuccess },
        {0,  kSuccess }
    };
    Entry_t entry{7};
    ClContainer container(kSortedList);
    container.handle->PositionFunction = [](ContainerHandle_t, void*) { return position; };
    for (const auto& [place, status] : kCases) {
        position = place;
        EXPECT_EQ(Insert(container.handle, &entry), status) << place;
    }
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
        EXPECT_EQ(params.CompareFunction(c.first, c.second), c.order);
        EXPECT_EQ(params.CompareFunction(c.second, c.first), c.reversed);
        EXPECT_EQ(UnInitContainer(handle), kSuccess);
    }
}

TEST(Front, RefusesWhatAContainerCannotDo) {
    const struct {
        const char* what;
        uint32_t type, dataType, ownPosition;
    } kCases[] = {
        {"sorted list without comparison", kSortedList,   kOwnData,   0},
        {"sorted list without position",   kSortedList,   kInt32Data, 1},
        {"red-black without comparison",   kRedBlackTree, kOwnData,   0},
        {"AVL without comparison",         kAVLTree,      kOwnData,   0},
        {"no such kind",                   4,             kInt32Data, 0},
    };
    const int32_t live = containerLibrary.LiveContainers;
    ContainerHandle_t handle = nullptr;
    for (const auto& c : kCases) {
        ContainerParams_t params{"", c.type, c.dataType, c.ownPosition, nullptr, nullptr};
        EXPECT_EQ(InitContainer(&params, &handle, 0), kFailure) << c.what;
    }
    EXPECT_EQ(InitContainer(nullptr, &handle, 0), kNullPointer);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(containerLibrary.LiveContainers, live);

    void* data = nullptr;
    Entry_t entry{1};
    const ClContainer unordered(kPlainList, nullptr);
    EXPECT_EQ(Push(unordered.handle, &entry), kSuccess);
    for (const status_t status :
         {DeleteByData(unordered.handle, &entry), UpdateNode(unordered.handle, &entry, &entry), Insert(nullptr, &entry),
          InsertAtIndex(nullptr, &entry, 0), RetrieveFromIndex(nullptr, &data, 0), RetrieveFromEnd(nullptr, &data),
          DeleteAtIndex(nullptr, 0), DeleteByData(nullptr, &entry), Push(nullptr, &entry), Pop(nullptr, &data),
          UpdateNode(nullptr, &entry, &entry), UnInitContainer(nullptr), GetContainerLibVersion(nullptr)})
        EXPECT_EQ(status, kNullPointer);
}

TEST(Front, TakesANameWithoutNul) {
    ContainerParams_t params{};
    ContainerHandle_t handle = nullptr;
    std::memset(params.ListName, 'n', sizeof params.ListName);
    ASSERT_EQ(InitContainer(&params, &handle, 0), kSuccess);
    EXPECT_EQ(std::string(handle->ListName), std::string(127, 'n'));
    EXPECT_EQ(UnInitContainer(handle), kSuccess);
}

// So a read of all entries by rising index is linear.
TEST(Place, EachReadContinuesFromTheLast) {
    for (const uint32_t type : kAllTypes) {
        std::vector<Entry_t> entries;
        ClContainer container(type);
        Play(container, &entries, "1 2 3 4 5 6 7 8 9");
        const ContainerRecord_t& record = *container.handle;
        void* data = nullptr;
        for (size_t i = 0; i < entries.size(); ++i) {
            EXPECT_EQ(RetrieveFromIndex(container.handle, &data, static_cast<int32_t>(i)), kSuccess);
            EXPECT_EQ(container.IsTree() ? static_cast<size_t>(record.TreePlace.Index) : record.ListPlace.Index, i);
        }
    }
}

// They have one lock, as they have one name.
TEST(Lock, FourThreadsOnTwoContainers) {
    static std::atomic<bool> inside;
    const auto compare = [](const void* first, const void* second) {
        EXPECT_FALSE(inside.exchange(true));
        std::this_thread::yield();
        inside = false;
        return CompareKeys(first, second);
    };
    for (const uint32_t type : kAllTypes) {
        std::vector<Entry_t> entries(800);
        ClContainer containers[] = {ClContainer(type, compare), ClContainer(type, compare)};
        std::vector<std::thread> threads;
        for (size_t first = 0; first < 4; ++first) {
            threads.emplace_back([&, first] {
                const ContainerHandle_t handle = containers[first % 2].handle;
                void* data;
                for (size_t i = first; i < entries.size(); i += 4) {
                    entries[i].Key = static_cast<int32_t>(i);
                    EXPECT_EQ(Insert(handle, &entries[i]), kSuccess);
                    EXPECT_EQ(RetrieveFromIndex(handle, &data, static_cast<int32_t>(i / 8)), kSuccess);
                    EXPECT_TRUE(i / 4 % 2 == 0 || DeleteByData(handle, &entries[i]) == kSuccess);
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        for (const ClContainer& container : containers) {
            EXPECT_EQ(container.Entries().size(), 200u);
            container.Check();
        }
    }
}

// Equal entries aren't rotated: they make a chain, here on a thread whose stack has no room for a call for each.
TEST(Trees, EqualEntriesMakeAChain) {
    constexpr size_t kStack = size_t{256} << 10;
    static constexpr int kEntries = 8'000;
    const auto fillAndEmpty = [](void*) -> void* {
        std::vector<Entry_t> entries(kEntries, Entry_t{5});
        ClContainer container(kAVLTree);
        for (Entry_t& entry : entries) EXPECT_EQ(Insert(container.handle, &entry), kSuccess);
        EXPECT_EQ(container.handle->AVLRoot->Height, kEntries);
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

    std::vector<Entry_t> entries;
    ClContainer onTheLeft(kAVLTree);
    Play(onTheLeft, &entries, "7 5 5");
    EXPECT_EQ(onTheLeft.handle->AVLRoot->Height, 3);
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
