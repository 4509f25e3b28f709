// The record of a structure: its bytes and its strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// A bounded view of one structure's record. No read leaves the record, whatever its bytes; numbers are little-endian.
//
// A record has at least Length bytes and ends with the string area, which ends in a double NUL. A structure may be
// shorter than the fields that its decoder shows. Fields past its end read differently per view:
class ClStructure {
  public:
    // A field that isn't wholly in the formatted area reads 0: a number made of string bytes would mislead.
    static ClStructure FormattedArea(const uint8_t* pData) { return {pData, pData[1], false}; }
    // Such a field reads the record's own bytes, those of the string area, and 0 after the record.
    static ClStructure WholeRecord(const uint8_t* pData);
    // The parsed records of types 0 to 2 have a fixed number of bytes, whatever Length says; fields after them read 0.
    static ClStructure FixedBytes(const uint8_t* pData, uint8_t count) { return {pData, count, false}; }

    const uint8_t* Data() const { return m_data; }
    uint8_t Length() const { return m_data[1]; }
    uint8_t Byte(size_t offset) const { return Read<uint8_t>(offset); }
    uint16_t Word(size_t offset) const { return Read<uint16_t>(offset); }
    uint32_t Dword(size_t offset) const { return Read<uint32_t>(offset); }
    uint64_t Qword(size_t offset) const { return Read<uint64_t>(offset); }
    // Whether the formatted area has `count` bytes from `offset` on.
    bool Holds(size_t offset, size_t count) const { return offset + count <= Length(); }
    // The number of bytes that reads take from the record; after them all reads give 0.
    size_t ReadableBytes() const;

  private:
    ClStructure(const uint8_t* data, size_t held, bool readsOn) : m_data(data), m_held(held), m_readsOn(readsOn) {}

    template <class Number>
    Number Read(size_t offset) const {
        Number number = 0;
        if (offset + sizeof number <= m_held)
            std::memcpy(&number, m_data + offset, sizeof number);
        else if (m_readsOn)
            ReadOn(offset, &number, sizeof number);
        return number;
    }
    void ReadOn(size_t offset, void* number, size_t size) const;

    const uint8_t* m_data;
    size_t m_held;                     // bytes that are read in one step
    bool m_readsOn;                    // whether reads go on to the end of the record
    mutable size_t m_recordBytes = 0;  // up to that end; 0 until it is first needed
};

// Walks the strings of a record's string area in order.
class ClStringWalk {
  public:
    explicit ClStringWalk(const uint8_t* pData);
    bool IsEmpty() const { return m_isEmpty; }
    // Returns the next string, or null after the last. In an area without strings every call returns "(null string)".
    const char* Next();
    // Returns the next string, or "(no such string)" after the last, like RecordString.
    const char* NextText();

  private:
    const char* m_next;
    bool m_isEmpty;
};

// Returns a string of a record's string area; the first is number 1. Number 0 gives the first too, so a decoder that
// must not show a string for 0 tests the number itself. "(null string)" if the area has no strings; "(no such string)"
// for a number that it doesn't have. The text lives as long as the record.
const char* RecordString(uint32_t number, const uint8_t* pData);
