// Containers beside the standard library's, with the same pointers, comparison and order of keys, behind a mutex as
// ours are. One iteration inserts all entries, finds them, and deletes them; each part's time per entry is a counter,
// and ratios to std::multimap are taken in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <list>
#include <map>
#include <mutex>
#include <numeric>
#include <random>
#include <set>
#include <vector>

#include "Packages/Container/Container.h"

namespace {

int32_t CompareInts(const void* first, const void* second) {
    const int32_t a = *static_cast<const int32_t*>(first), b = *static_cast<const int32_t*>(second);
    return a > b ? 1 : a == b ? 0 : -1;
}
struct Below_t {
    ContainerCompare_t compare = CompareInts;  // through a pointer, as a container's
    bool operator()(const void* first, const void* second) const { return compare(first, second) < 0; }
};

// Ours have no operation that finds an entry and leaves it, so Find exchanges an entry for itself: in a tree that is a
// deletion and an insertion, and in std's containers one search.
class ClOurs {
  public:
    explicit ClOurs(uint32_t type) {
        ContainerParams_t params{"ContainerBenchmark", type, kOwnData, 0, CompareInts, nullptr};
        InitContainer(&params, &m_handle, 0);
    }
    ClOurs(const ClOurs&) = delete;
    ClOurs& operator=(const ClOurs&) = delete;
    ~ClOurs() { UnInitContainer(m_handle); }
    bool Insert(void* data) { return ::Insert(m_handle, data) == kSuccess; }
    bool Find(void* data) { return UpdateNode(m_handle, data, data) == kSuccess; }
    bool Delete(void* data) { return DeleteByData(m_handle, data) == kSuccess; }
    bool Push(void* data) { return ::Push(m_handle, data) == kSuccess; }
    bool At(int32_t index, void** data) { return RetrieveFromIndex(m_handle, data, index) == kSuccess; }
    bool Pop(void** data) { return ::Pop(m_handle, data) == kSuccess; }

  private:
    ContainerHandle_t m_handle = nullptr;
};
struct ClRedBlackTree : ClOurs {
    ClRedBlackTree() : ClOurs(kRedBlackTree) {}
};
struct ClAVLTree : ClOurs {
    ClAVLTree() : ClOurs(kAVLTree) {}
};
struct ClPlainList : ClOurs {
    ClPlainList() : ClOurs(kPlainList) {}
};
struct ClSortedList : ClOurs {
    ClSortedList() : ClOurs(kSortedList) {}
};

template <class Map_t>
class ClStandardMap {
  public:
    bool Insert(void* data) {
        const std::lock_guard guard(m_mutex);
        if constexpr (requires { typename Map_t::mapped_type; })
            m_entries.emplace(data, data);
        else
            m_entries.insert(data);
        return true;
    }
    bool Find(void* data) {
        const std::lock_guard guard(m_mutex);
        return m_entries.find(data) != m_entries.end();
    }
    bool Delete(void* data) {
        const std::lock_guard guard(m_mutex);
        const auto place = m_entries.find(data);
        if (place == m_entries.end()) return false;
        m_entries.erase(place);
        return true;
    }

  private:
    std::mutex m_mutex;
    Map_t m_entries;
};
using ClMultimap = ClStandardMap<std::multimap<void*, void*, Below_t>>;
using ClMap = ClStandardMap<std::map<void*, void*, Below_t>>;
using ClMultiset = ClStandardMap<std::multiset<void*, Below_t>>;

class ClStandardList {
  public:
    bool Push(void* data) {
        const std::lock_guard guard(m_mutex);
        m_entries.push_back(data);
        return true;
    }
    // As a reader would: with an iterator that goes along.
    bool At(int32_t index, void** data) {
        const std::lock_guard guard(m_mutex);
        m_next = index == 0 ? m_entries.begin() : std::next(m_next);
        *data = *m_next;
        return true;
    }
    bool Pop(void** data) {
        const std::lock_guard guard(m_mutex);
        *data = m_entries.back();
        m_entries.pop_back();
        return true;
    }

  private:
    std::mutex m_mutex;
    std::list<void*> m_entries;
    std::list<void*>::iterator m_next;
};

// Keys in an order of their own for each part of the work.
struct Keys_t {
    std::vector<int32_t> values;
    std::vector<void*> inserted, sought, deleted;
    explicit Keys_t(size_t count) : values(count) {
        std::iota(values.begin(), values.end(), 0);
        std::mt19937 random(7);
        for (int32_t& value : values) inserted.push_back(&value);
        for (auto* order : {&inserted, &sought, &deleted}) {
            *order = inserted;
            std::shuffle(order->begin(), order->end(), random);
        }
    }
};

// Processor time, as other programs may run beside this one.
template <class Work_t>
double SecondsFor(const Work_t& work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

struct Times_t {
    double insert = 0, find = 0, erase = 0;
};

template <class Subject_t>
Times_t TreeTimes(const Keys_t& keys, benchmark::State& state) {
    Subject_t subject;
    bool right = true;
    Times_t times;
    times.insert = SecondsFor([&] {
        for (void* key : keys.inserted) right &= subject.Insert(key);
    });
    times.find = SecondsFor([&] {
        for (void* key : keys.sought) right &= subject.Find(key);
    });
    times.erase = SecondsFor([&] {
        for (void* key : keys.deleted) right &= subject.Delete(key);
    });
    if (!right) state.SkipWithError("an operation failed");
    return times;
}

// Both subjects in turn, so that the ratio is one of the same minute; the best time of each counts.
template <class Subject_t, class Base_t>
void BM_ContainerTree(benchmark::State& state) {
    const auto count = static_cast<size_t>(state.range(0));
    const Keys_t keys(count);
    const auto keepBest = [](Times_t* best, const Times_t& times) {
        const auto keep = [](double* a, double b) { *a = *a == 0 ? b : std::min(*a, b); };
        keep(&best->insert, times.insert);
        keep(&best->find, times.find);
        keep(&best->erase, times.erase);
    };
    Times_t ours, base;
    for (auto _ : state) {
        keepBest(&base, TreeTimes<Base_t>(keys, state));
        const Times_t times = TreeTimes<Subject_t>(keys, state);
        keepBest(&ours, times);
        state.SetIterationTime(times.insert + times.find + times.erase);
    }
    const double perEntry = 1e9 / static_cast<double>(count);
    state.counters["insert_ns"] = ours.insert * perEntry;
    state.counters["find_ns"] = ours.find * perEntry;
    state.counters["delete_ns"] = ours.erase * perEntry;
    state.counters["insert_ratio"] = ours.insert / base.insert;
    state.counters["find_ratio"] = ours.find / base.find;
    state.counters["delete_ratio"] = ours.erase / base.erase;
}
#define CONTAINER_TREE(subject, base)          \
    BENCHMARK(BM_ContainerTree<subject, base>) \
        ->Arg(1'000)                           \
        ->Arg(1'000'000)                       \
        ->UseManualTime()                      \
        ->Unit(benchmark::kMillisecond)
CONTAINER_TREE(ClMultimap, ClMultimap);
CONTAINER_TREE(ClRedBlackTree, ClMultimap);
CONTAINER_TREE(ClAVLTree, ClMultimap);
CONTAINER_TREE(ClRedBlackTree, ClMap);
CONTAINER_TREE(ClAVLTree, ClMap);
CONTAINER_TREE(ClRedBlackTree, ClMultiset);
CONTAINER_TREE(ClAVLTree, ClMultiset);

template <class Subject_t>
void BM_ContainerListPushReadPop(benchmark::State& state) {
    const auto count = static_cast<int32_t>(state.range(0));
    int32_t value = 0;
    void* data = nullptr;
    bool right = true;
    Subject_t subject;
    for (auto _ : state) {
        for (int32_t i = 0; i < count; ++i) right &= subject.Push(&value);
        for (int32_t i = 0; i < count; ++i) right &= subject.At(i, &data);
        for (int32_t i = 0; i < count; ++i) right &= subject.Pop(&data);
    }
    if (!right) state.SkipWithError("an operation failed");
    state.SetItemsProcessed(state.iterations() * count * 3);
}
BENCHMARK(BM_ContainerListPushReadPop<ClPlainList>)->Arg(1'000)->Arg(1'000'000);
BENCHMARK(BM_ContainerListPushReadPop<ClStandardList>)->Arg(1'000)->Arg(1'000'000);

// The operations of every kind, for as many entries as a list with its linear search is meant for. Insert and search go
// in no order; read goes by rising index.
template <class Subject_t>
void BM_ContainerOperations(benchmark::State& state) {
    const Keys_t keys(1'000);
    bool right = true;
    double insert = 0, search = 0, read = 0;
    for (auto _ : state) {
        Subject_t subject;
        void* data = nullptr;
        const auto secondsForEach = [&](const std::vector<void*>& order, const auto& operation) {
            return SecondsFor([&] {
                for (void* key : order) right &= operation(key);
            });
        };
        int32_t index = 0;
        const double inserted = secondsForEach(keys.inserted, [&](void* key) { return subject.Insert(key); });
        const double found = secondsForEach(keys.sought, [&](void* key) { return subject.Find(key); });
        const double seen = secondsForEach(keys.sought, [&](void*) { return subject.At(index++, &data); });
        for (void* key : keys.deleted) right &= subject.Delete(key);
        insert += inserted, search += found, read += seen;
        state.SetIterationTime(inserted + found + seen);
    }
    if (!right) state.SkipWithError("an operation failed");
    const double perEntry = 1e9 / 1'000 / static_cast<double>(state.iterations());
    state.counters["insert_ns"] = insert * perEntry;
    state.counters["search_ns"] = search * perEntry;
    state.counters["read_ns"] = read * perEntry;
}
BENCHMARK(BM_ContainerOperations<ClPlainList>)->UseManualTime();
BENCHMARK(BM_ContainerOperations<ClSortedList>)->UseManualTime();
BENCHMARK(BM_ContainerOperations<ClRedBlackTree>)->UseManualTime();
BENCHMARK(BM_ContainerOperations<ClAVLTree>)->UseManualTime();

}  // namespace
