// ACPI tables that describe the processors of ARM64.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

// MADT with an interface for each processor, of ACPI's number and the flags of it.
inline std::vector<uint8_t> MadtOf(std::initializer_list<std::pair<uint8_t, uint8_t>> processors) {
    constexpr uint8_t kGicInterface = 11, kSize = 80;
    std::vector<uint8_t> madt(44);
    for (const auto& [id, flags] : processors) {
        const size_t entry = madt.size();
        madt.resize(entry + kSize);
        madt[entry] = kGicInterface;
        madt[entry + 1] = kSize;
        madt[entry + 4] = 99;  // the interface's own number
        madt[entry + 8] = id;
        madt[entry + 12] = flags;
    }
    return madt;
}

// Writes PPTT. What refers to another structure gets its place in the table.
class ClTree {
  public:
    static constexpr size_t kHead = 36;
    static constexpr uint32_t kPackage = 1, kHasId = 2, kThread = 4, kLeaf = 8;
    static constexpr uint32_t kData = 0, kInstruction = 1, kUnified = 2;

    explicit ClTree(uint8_t revision = 2) : m_bytes(kHead) { m_bytes[8] = revision; }

    uint32_t Cache(uint32_t size, uint8_t kind, uint32_t next = 0, uint32_t flags = 0x7F) {
        const uint32_t place = Begin(1, 24);
        for (const uint32_t number : {flags, next, size, 256u}) Dword(number);
        m_bytes.insert(m_bytes.end(), {4, static_cast<uint8_t>(kind << 2), 64, 0});
        return place;
    }
    uint32_t Node(uint32_t flags, uint32_t parent, uint32_t id, const std::vector<uint32_t>& caches = {}) {
        const uint32_t place = Begin(0, 20 + 4 * caches.size());
        for (const uint32_t number : {flags, parent, id, static_cast<uint32_t>(caches.size())}) Dword(number);
        for (const uint32_t cache : caches) Dword(cache);
        return place;
    }
    uint32_t Core(uint32_t parent, uint32_t id, const std::vector<uint32_t>& caches = {}) {
        return Node(kHasId | kLeaf, parent, id, caches);
    }
    // Writes a node's parent or a cache's next one.
    void Refer(uint32_t from, uint32_t to) {
        for (uint32_t byte = 0; byte < 4; byte++) m_bytes[from + 8 + byte] = static_cast<uint8_t>(to >> 8 * byte);
    }
    uint32_t End() const { return static_cast<uint32_t>(m_bytes.size()); }
    const std::vector<uint8_t>& Bytes() const { return m_bytes; }

  private:
    uint32_t Begin(uint8_t type, size_t size) {
        const uint32_t place = End();
        m_bytes.insert(m_bytes.end(), {type, static_cast<uint8_t>(size), 0, 0});
        return place;
    }
    void Dword(uint32_t number) {
        for (int byte = 0; byte < 4; byte++) m_bytes.push_back(static_cast<uint8_t>(number >> 8 * byte));
    }
    std::vector<uint8_t> m_bytes;
};
