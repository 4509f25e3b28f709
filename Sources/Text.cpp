#include "Sources/Text.h"

void ClTextArena::Clear() {
    if (m_blocks.empty()) return;
    m_blocks.resize(1);
    m_next = m_blocks.front().get();
    m_left = kBlockBytes;
}

void ClTextArena::ReturnTo(const Mark_t& mark) {
    m_blocks.resize(mark.blocks);
    m_next = mark.next;
    m_left = mark.left;
}

void ClTextArena::Grow(size_t size) {
    const size_t bytes = std::max(size, kBlockBytes);
    m_blocks.push_back(std::make_unique_for_overwrite<char[]>(bytes));
    m_next = m_blocks.back().get();
    m_left = bytes;
}
