// A data buffer of the hardware library in an allocation of exactly its size, so that sanitizers notice an overrun.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"

class ClBuffer {
  public:
    explicit ClBuffer(uint32_t size) : ClBuffer(size, size) {}
    ClBuffer(uint32_t size, uint32_t room) : m_block(sizeof(DataBuffer_t) + room, 0xEE) { Get()->Size = size; }
    ClBuffer(std::initializer_list<uint8_t> bytes) : ClBuffer(static_cast<uint32_t>(bytes.size())) {
        std::copy(bytes.begin(), bytes.end(), Get()->Data());
    }
    explicit ClBuffer(std::string_view bytes) : ClBuffer(static_cast<uint32_t>(bytes.size())) {
        std::copy(bytes.begin(), bytes.end(), Get()->Data());
    }
    DataBuffer_t* Get() { return reinterpret_cast<DataBuffer_t*>(m_block.data()); }
    std::vector<uint8_t> Bytes() const { return {m_block.begin() + sizeof(DataBuffer_t), m_block.end()}; }

  private:
    std::vector<uint8_t> m_block;
};
