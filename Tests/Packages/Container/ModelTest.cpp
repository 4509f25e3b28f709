// Random operations on each kind, compared with a std::vector that models what each of them does.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "Tests/Packages/Container/Nodes.h"

namespace {

// The first entry of `key` on the path of a search, or null.
template <class Node_t>
void* FirstOnPath(const Node_t* node, const Node_t* absent, int32_t key) {
    while (node != absent && KeyOf(node->Data) != key) node = key < KeyOf(node->Data) ? node->Left : node->Right;
    return node == absent ? nullptr : node->Data;
}

class ClModel {
  public:
    explicit ClModel(const ClContainer& container) : m_container(container), m_type(container.handle->ContainerType) {}

    const std::vector<void*>& Entries() const { return m_entries; }
    int32_t Size() const { return static_cast<int32_t>(m_entries.size()); }
    void SetMemory(bool hasMemory) { m_hasMemory = hasMemory; }

    status_t InsertAtIndex(void* data, int32_t index) {
        if (m_type != kPlainList) return 5;
        if (data == nullptr) return 4;
        if (index < 0 || index > Size()) return 2;
        if (!m_hasMemory) return 3;
        m_entries.insert(m_entries.begin() + index, data);
        return 1;
    }
    status_t Insert(void* data) {
        if (data == nullptr) return 4;
        if (!m_hasMemory) return m_type == kAVLTree && !m_entries.empty() ? 5 : 3;
        const auto below = [](void* a, void* b) { return KeyOf(a) < KeyOf(b); };
        auto place = m_entries.end();
        if (m_type == kSortedList) place = std::lower_bound(m_entries.begin(), m_entries.end(), data, below);
        if (IsTree()) place = std::upper_bound(m_entries.begin(), m_entries.end(), data, below);
        m_entries.insert(place, data);
        return 1;
    }
    status_t RetrieveFromIndex(void** data, int32_t index) const {
        if (m_entries.empty()) return m_type == kRedBlackTree ? 2 : 4;
        if (index < 0) return 2;
        if (index >= Size()) return IsTree() ? 2 : 5;
        *data = m_entries[static_cast<size_t>(index)];
        return 1;
    }
    status_t RetrieveFromEnd(void** data) const {
        if (m_entries.empty() && m_type != kRedBlackTree) return 5;
        *data = m_entries.empty() ? nullptr : m_entries.back();
        return 1;
    }
    status_t DeleteAtIndex(int32_t index) {
        if (IsTree()) return 5;
        if (m_entries.empty()) return 4;
        if (index < 0 || index >= Size()) return 2;
        m_entries.erase(m_entries.begin() + index);
        return 1;
    }
    // Call it before the container deletes.
    status_t DeleteByData(const void* data) {
        if (data == nullptr) return 4;
        if (m_entries.empty()) return m_type == kRedBlackTree ? 5 : 4;
        const void* leaving = ToDelete(KeyOf(data));
        if (leaving == nullptr) return m_type == kRedBlackTree ? 5 : 2;
        m_entries.erase(std::find(m_entries.begin(), m_entries.end(), leaving));
        return 1;
    }
    status_t Push(void* data) {
        if (IsTree()) return 5;
        if (data == nullptr) return 4;
        if (!m_hasMemory) return 3;
        if (m_type == kSortedList && !m_entries.empty() && KeyOf(data) < KeyOf(m_entries.back())) return 2;
        m_entries.push_back(data);
        return 1;
    }
    status_t Pop(void** data) {
        if (IsTree() || m_entries.empty()) return 5;
        *data = m_entries.back();
        m_entries.pop_back();
        return 1;
    }
    status_t UpdateNode(void* oldData, void* newData) {
        if (oldData == nullptr || newData == nullptr) return 4;
        if (m_type != kPlainList) {
            const status_t deleted = DeleteByData(oldData);
            return deleted == 1 ? Insert(newData) : deleted;
        }
        const auto place = std::find(m_entries.begin(), m_entries.end(), ToDelete(KeyOf(oldData)));
        if (place == m_entries.end()) return 2;
        *place = newData;
        return 1;
    }

  private:
    bool IsTree() const { return m_type >= kRedBlackTree; }
    const void* ToDelete(int32_t key) const {
        const ContainerRecord_t& record = *m_container.handle;
        if (m_type == kRedBlackTree) return FirstOnPath<RBNode_t>(record.RBRoot, &record.Sentinel, key);
        if (m_type == kAVLTree) return FirstOnPath<AVLNode_t>(record.AVLRoot, nullptr, key);
        const auto place = std::ranges::find_if(m_entries, [&](void* entry) { return KeyOf(entry) == key; });
        return place == m_entries.end() ? nullptr : *place;
    }

    const ClContainer& m_container;
    const uint32_t m_type;
    std::vector<void*> m_entries;
    bool m_hasMemory = true;
};

// A comparison may read its own container by index and sees its present entries. Null: this one reads none.
const ClContainer* compared = nullptr;
int32_t CompareAndRead(const void* first, const void* second) {
    if (compared != nullptr) {
        const std::vector<void*> entries = compared->Entries();
        void* middle = nullptr;
        RetrieveFromIndex(compared->handle, &middle, static_cast<int32_t>(entries.size() / 2));
        EXPECT_EQ(middle, entries[entries.size() / 2]);
    }
    return CompareKeys(first, second);
}

struct Run_t {
    const char* what;
    uint32_t type;
    int32_t keys;  // 0 up to this one
    bool distinct;
};

class Model : public testing::TestWithParam<Run_t> {};

TEST_P(Model, RandomOperationsDoAsTheModelSays) {
    const Run_t run = GetParam();
    std::vector<std::unique_ptr<Entry_t>> made;
    ClContainer container(run.type, CompareAndRead);
    ClModel model(container);
    ContainerHandle_t handle = container.handle;
    std::mt19937 random(20240611);
    const auto upTo = [&](int32_t last) { return std::uniform_int_distribution<int32_t>(0, last)(random); };
    const auto newEntry = [&]() -> void* {
        if (upTo(99) == 0) return nullptr;
        int32_t key = upTo(run.keys);
        const auto taken = [&] {
            return std::ranges::any_of(model.Entries(), [&](void* entry) { return KeyOf(entry) == key; });
        };
        while (run.distinct && taken()) key = upTo(run.keys);
        return made.emplace_back(new Entry_t{key, static_cast<int>(made.size())}).get();
    };
    int32_t nextRead = 0, target = 0;
    for (int step = 0; step < 100'000; ++step) {
        // The target size changes now and then, also to 0.
        if (step % 500 == 0) target = upTo(3) == 0 ? 0 : upTo(200);
        const bool growing = model.Size() < target;
        Entry_t wanted{upTo(run.keys)};
        if (model.Size() > 0 && upTo(1) == 0)
            wanted.Key = KeyOf(model.Entries()[static_cast<size_t>(upTo(model.Size() - 1))]);
        void* sought = upTo(99) == 0 ? nullptr : &wanted;
        void* update = newEntry();
        void* data = growing ? update : nullptr;
        const int32_t index = upTo(model.Size() + 2) - 1;
        // Mostly by rising index, which uses the remembered place.
        const int32_t place = upTo(3) == 0 ? index : nextRead;
        nextRead = place < model.Size() ? place + 1 : 0;
        void *got = &wanted, *expected = &wanted;
        std::pair<status_t, status_t> statuses;  // the model's and the container's
        const int operation = upTo(9);
        const bool hasMemory = upTo(49) != 0;
        model.SetMemory(hasMemory);
        compared = upTo(199) == 0 ? &container : nullptr;
        if (!hasMemory) containerLibrary.Malloc = [](size_t) -> void* { return nullptr; };
        if (operation <= 1)
            statuses = {model.Insert(data), Insert(handle, data)};
        else if (operation == 2)
            statuses = {model.InsertAtIndex(data, index), InsertAtIndex(handle, data, index)};
        else if (operation == 3)
            statuses = {model.Push(data), Push(handle, data)};
        else if (operation == 4)
            statuses = {model.DeleteByData(sought), DeleteByData(handle, sought)};
        else if (operation == 5 && !growing)
            statuses = {model.DeleteAtIndex(index), DeleteAtIndex(handle, index)};
        else if (operation == 5)
            statuses = {model.RetrieveFromEnd(&expected), RetrieveFromEnd(handle, &got)};
        else if (operation == 6 && !growing)
            statuses = {model.Pop(&expected), Pop(handle, &got)};
        else if (operation == 7)
            statuses = {model.UpdateNode(sought, update), UpdateNode(handle, sought, update)};
        else
            statuses = {model.RetrieveFromIndex(&expected, place), RetrieveFromIndex(handle, &got, place)};
        containerLibrary.Malloc = os_malloc;
        compared = nullptr;
        EXPECT_EQ(statuses.second, statuses.first);
        EXPECT_EQ(got, expected);
        EXPECT_EQ(container.Entries(), model.Entries());
        container.Check(!run.distinct);
        if (HasFailure()) FAIL() << "operation " << operation << " at step " << step;
    }
}

constexpr Run_t kRuns[] = {
    {"PlainList",             kPlainList,    40,   false},
    {"SortedList",            kSortedList,   40,   false},
    {"RedBlackTreeEqualKeys", kRedBlackTree, 40,   false},
    {"RedBlackTreeDistinct",  kRedBlackTree, 1000, true },
    {"AVLTreeEqualKeys",      kAVLTree,      40,   false},
    {"AVLTreeDistinct",       kAVLTree,      1000, true },
};
INSTANTIATE_TEST_SUITE_P(Kinds, Model, testing::ValuesIn(kRuns), [](const auto& run) { return run.param.what; });

}  // namespace
