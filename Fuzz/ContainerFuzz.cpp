// Compares containers of each kind with a model, a plain vector, under any sequence of operations.
// Input: the kind (1 byte), then two bytes for each operation: which one, and its data or index.
#include <algorithm>

#include "Fuzz/Fuzz.h"
#include "Packages/Container/Container.h"

namespace {

constexpr size_t kValues = 64;

// Four entries have the same value, so that equal keys occur.
int32_t* Value(uint8_t number) {
    static int32_t values[kValues];
    const size_t place = number % kValues;
    values[place] = static_cast<int32_t>(place / 4);
    return &values[place];
}

bool IsBelow(const int32_t* first, const int32_t* second) { return *first < *second; }

class ClModel {
  public:
    explicit ClModel(uint32_t kind) : m_kind(kind) {
        ContainerParams_t params = {};
        params.ContainerType = kind;
        params.DataType = kInt32Data;
        Require(InitContainer(&params, &m_handle, 0) == kSuccess);
    }
    ClModel(const ClModel&) = delete;
    ClModel& operator=(const ClModel&) = delete;
    ~ClModel() {
        while (!m_entries.empty()) Delete(m_entries.back());
        Require(UnInitContainer(m_handle) == kSuccess);
    }

    void Operate(uint8_t operation, uint8_t argument) {
        int32_t* const data = Value(argument);
        const int32_t index = static_cast<int8_t>(argument);
        switch (operation % 9) {
            case 0: return Add(data);
            case 1: return Delete(data);
            case 2: return AddAt(data, index);
            case 3: return DeleteAt(index);
            case 4: return AddAtEnd(data);
            case 5: return TakeFromEnd();
            case 6: return Update(data, Value(static_cast<uint8_t>(argument * 7)));
            case 7: return Read(index);
            default: return ReadEnd();
        }
    }

    void ReadAll() {
        for (size_t index = 0; index < m_entries.size(); index++) Read(static_cast<int32_t>(index));
    }

  private:
    bool IsList() const { return m_kind <= kSortedList; }
    size_t Size() const { return m_entries.size(); }
    // A tree may return any of several equal entries.
    bool IsEntry(size_t place, const void* data) const {
        return IsList() ? m_entries[place] == data : *m_entries[place] == *static_cast<const int32_t*>(data);
    }
    auto Find(const int32_t* data) {
        return std::ranges::find_if(m_entries, [data](const int32_t* each) { return *each == *data; });
    }
    // Adds an entry where a container of this kind would.
    void Place(int32_t* data) {
        auto place = m_entries.end();
        if (m_kind == kSortedList) place = std::ranges::lower_bound(m_entries, data, IsBelow);
        if (!IsList()) place = std::ranges::upper_bound(m_entries, data, IsBelow);
        m_entries.insert(place, data);
    }

    void Add(int32_t* data) {
        Require(Insert(m_handle, data) == kSuccess);
        Place(data);
    }
    void Delete(int32_t* data) {
        const auto place = Find(data);
        const bool isThere = place != m_entries.end();
        if (isThere) m_entries.erase(place);
        Require((DeleteByData(m_handle, data) == kSuccess) == isThere);
    }
    void AddAt(int32_t* data, int32_t index) {
        const bool fits = m_kind == kPlainList && index >= 0 && static_cast<size_t>(index) <= Size();
        Require((InsertAtIndex(m_handle, data, index) == kSuccess) == fits);
        if (fits) m_entries.insert(m_entries.begin() + index, data);
    }
    void DeleteAt(int32_t index) {
        const bool fits = IsList() && index >= 0 && static_cast<size_t>(index) < Size();
        Require((DeleteAtIndex(m_handle, index) == kSuccess) == fits);
        if (fits) m_entries.erase(m_entries.begin() + index);
    }
    void AddAtEnd(int32_t* data) {
        const bool fits =
            m_kind == kPlainList || (m_kind == kSortedList && (Size() == 0 || *m_entries.back() <= *data));
        Require((Push(m_handle, data) == kSuccess) == fits);
        if (fits) m_entries.push_back(data);
    }
    void TakeFromEnd() {
        void* data = nullptr;
        const bool fits = IsList() && Size() != 0;
        Require((Pop(m_handle, &data) == kSuccess) == fits);
        if (!fits) return;
        Require(data == m_entries.back());
        m_entries.pop_back();
    }
    void Update(int32_t* oldData, int32_t* newData) {
        const auto place = Find(oldData);
        const bool isThere = place != m_entries.end();
        Require((UpdateNode(m_handle, oldData, newData) == kSuccess) == isThere);
        if (!isThere) return;
        if (m_kind == kPlainList) {
            *place = newData;
        } else {
            m_entries.erase(place);
            Place(newData);
        }
    }
    void Read(int32_t index) {
        void* data = nullptr;
        const status_t status = RetrieveFromIndex(m_handle, &data, index);
        // Many equal keys make an AVL tree too deep for its walk.
        if (m_kind == kAVLTree && Size() > 99 && status == kFailure) return;
        const bool fits = index >= 0 && static_cast<size_t>(index) < Size();
        Require((status == kSuccess) == fits);
        Require(fits ? IsEntry(static_cast<size_t>(index), data) : data == nullptr);
    }
    void ReadEnd() {
        int32_t none = 0;
        void* data = &none;
        const status_t status = RetrieveFromEnd(m_handle, &data);
        if (Size() != 0)
            Require(status == kSuccess && IsEntry(Size() - 1, data));
        else
            Require(m_kind == kRedBlackTree ? status == kSuccess && data == nullptr : status != kSuccess);
    }

    uint32_t m_kind;
    ContainerHandle_t m_handle = nullptr;
    std::vector<int32_t*> m_entries;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    ClModel model(input.Take<uint8_t>() % 4);
    while (!input.IsEmpty()) {
        const auto operation = input.Take<uint8_t>();
        model.Operate(operation, input.Take<uint8_t>());
    }
    model.ReadAll();
    return 0;
}
