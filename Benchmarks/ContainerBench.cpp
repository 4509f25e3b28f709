// Compares our containers with the standard library's: same pointers, comparison and order of keys, and each under a
// mutex. The two of a pair take turns, so that other load on the machine affects both; the best time of each part
// counts.
//
// Lists are searched with 1,000 entries only. With 1,000,000 a search visits half a million entries on average: a run
// would take hours and measure the speed of memory.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <list>
#include <map>
#include <mutex>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "Packages/Container/Container.h"

namespace {

int32_t CompareInts(const void* first, const void* second) {
    const int32_t a = *static_cast<const int32_t*>(first), b = *static_cast<const int32_t*>(second);
    return a > b ? 1 : a == b ? 0 : -1;
}
struct Below_t {
    ContainerCompare_t compare = CompareInts;  // through a pointer, as in our containers
    bool operator()(const void* first, const void* second) const { return compare(first, second) < 0; }
};

// Our containers can't find an entry without changing it, so Find replaces an entry by itself. In a tree or a sorted
// list that is a deletion and an insertion; the standard containers need one search.
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
    // Reads like most callers, with an iterator that advances.
    bool At(int32_t index, void** data) {
        const std::lock_guard guard(m_mutex);
        m_next = index == 0 ? m_entries.begin() : std::next(m_next);
        if constexpr (requires { typename Map_t::mapped_type; })
            *data = m_next->second;
        else
            *data = *m_next;
        return true;
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
    typename Map_t::iterator m_next;
};
using ClMultimap = ClStandardMap<std::multimap<void*, void*, Below_t>>;
using ClMap = ClStandardMap<std::map<void*, void*, Below_t>>;
using ClMultiset = ClStandardMap<std::multiset<void*, Below_t>>;

// A sorted list searches from the first entry on, as ours does.
template <bool kSorted>
class ClStandardList {
  public:
    bool Insert(void* data) {
        const std::lock_guard guard(m_mutex);
        const auto isNotBelow = [&](void* entry) { return m_compare(data, entry) <= 0; };
        m_entries.insert(kSorted ? std::ranges::find_if(m_entries, isNotBelow) : m_entries.end(), data);
        return true;
    }
    bool Find(void* data) {
        const std::lock_guard guard(m_mutex);
        return Place(data) != m_entries.end();
    }
    bool At(int32_t index, void** data) {
        const std::lock_guard guard(m_mutex);
        m_next = index == 0 ? m_entries.begin() : std::next(m_next);
        *data = *m_next;
        return true;
    }
    bool Delete(void* data) {
        const std::lock_guard guard(m_mutex);
        const auto place = Place(data);
        if (place == m_entries.end()) return false;
        m_entries.erase(place);
        return true;
    }
    bool Push(void* data) {
        const std::lock_guard guard(m_mutex);
        if (kSorted && !m_entries.empty() && m_compare(data, m_entries.back()) < 0) return false;
        m_entries.push_back(data);
        return true;
    }
    bool Pop(void** data) {
        const std::lock_guard guard(m_mutex);
        *data = m_entries.back();
        m_entries.pop_back();
        return true;
    }

  private:
    std::list<void*>::iterator Place(void* data) {
        return std::ranges::find_if(m_entries, [&](void* entry) { return m_compare(data, entry) == 0; });
    }

    std::mutex m_mutex;
    ContainerCompare_t m_compare = CompareInts;
    std::list<void*> m_entries;
    std::list<void*>::iterator m_next;
};
using ClStandardPlainList = ClStandardList<false>;
using ClStandardSortedList = ClStandardList<true>;

// Keys in rising order, and shuffled anew for each part of the work.
struct Keys_t {
    std::vector<int32_t> values;
    std::vector<void*> rising, inserted, sought, deleted;
    explicit Keys_t(size_t count) : values(count) {
        std::iota(values.begin(), values.end(), 0);
        std::mt19937 random(7);
        for (int32_t& value : values) rising.push_back(&value);
        for (auto* order : {&inserted, &sought, &deleted}) {
            *order = rising;
            std::shuffle(order->begin(), order->end(), random);
        }
    }
};

// Runs one operation for each key and returns the processor time, as other programs may run at the same time.
template <class Operation_t>
double SecondsForEach(const std::vector<void*>& keys, const Operation_t& operation, bool* right) {
    const std::clock_t start = std::clock();
    for (void* key : keys) *right &= operation(key);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

using Times_t = std::vector<double>;

struct Search_t {
    static constexpr const char* kParts[] = {"insert", "find", "read", "delete"};
    template <class Subject_t>
    static Times_t Run(Subject_t& subject, const Keys_t& keys, bool* right) {
        int32_t index = 0;
        void* data = nullptr;
        return {SecondsForEach(
                    keys.inserted, [&](void* key) { return subject.Insert(key); }, right),
                SecondsForEach(
                    keys.sought, [&](void* key) { return subject.Find(key); }, right),
                SecondsForEach(
                    keys.rising, [&](void*) { return subject.At(index++, &data); }, right),
                SecondsForEach(
                    keys.deleted, [&](void* key) { return subject.Delete(key); }, right)};
    }
};

struct Stack_t {
    static constexpr const char* kParts[] = {"push", "read", "pop"};
    template <class Subject_t>
    static Times_t Run(Subject_t& subject, const Keys_t& keys, bool* right) {
        int32_t index = 0;
        void* data = nullptr;
        return {SecondsForEach(
                    keys.rising, [&](void* key) { return subject.Push(key); }, right),
                SecondsForEach(
                    keys.rising, [&](void*) { return subject.At(index++, &data); }, right),
                SecondsForEach(
                    keys.rising, [&](void*) { return subject.Pop(&data); }, right)};
    }
};

template <class Work_t, class Subject_t, class Base_t>
void BM_Container(benchmark::State& state) {
    const Keys_t keys(static_cast<size_t>(state.range(0)));
    bool right = true;
    const auto run = [&]<class Measured_t>(Times_t* best) {
        Measured_t subject;
        const Times_t times = Work_t::Run(subject, keys, &right);
        if (best->empty()) *best = times;
        for (size_t part = 0; part < times.size(); ++part) (*best)[part] = std::min((*best)[part], times[part]);
        return std::accumulate(times.begin(), times.end(), 0.0);
    };
    Times_t ours, base;
    for (auto _ : state) {
        run.template operator()<Base_t>(&base);
        state.SetIterationTime(run.template operator()<Subject_t>(&ours));
    }
    if (!right) state.SkipWithError("an operation failed");
    for (size_t part = 0; part < ours.size(); ++part) {
        const std::string name = Work_t::kParts[part];
        state.counters[name + "_ns"] = 1e9 * ours[part] / static_cast<double>(keys.values.size());
        state.counters[name + "_ratio"] = ours[part] / base[part];
    }
}
#define CONTAINER_BENCHMARK(work, subject, base) \
    BENCHMARK(BM_Container<work, subject, base>)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(1'000)
CONTAINER_BENCHMARK(Search_t, ClMultimap, ClMultimap)->Arg(1'000'000);
CONTAINER_BENCHMARK(Search_t, ClRedBlackTree, ClMultimap)->Arg(1'000'000);
CONTAINER_BENCHMARK(Search_t, ClAVLTree, ClMultimap)->Arg(1'000'000);
CONTAINER_BENCHMARK(Search_t, ClRedBlackTree, ClMap)->Arg(1'000'000);
CONTAINER_BENCHMARK(Search_t, ClAVLTree, ClMap)->Arg(1'000'000);
CONTAINER_BENCHMARK(Search_t, ClRedBlackTree, ClMultiset)->Arg(1'000'000);
CONTAINER_BENCHMARK(Search_t, ClAVLTree, ClMultiset)->Arg(1'000'000);
CONTAINER_BENCHMARK(Search_t, ClPlainList, ClStandardPlainList);
CONTAINER_BENCHMARK(Search_t, ClSortedList, ClStandardSortedList);
CONTAINER_BENCHMARK(Stack_t, ClPlainList, ClStandardPlainList)->Arg(1'000'000);
CONTAINER_BENCHMARK(Stack_t, ClSortedList, ClStandardSortedList)->Arg(1'000'000);

}  // namespace
