// Builds structures for tests, and decodes them with the whole library.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

// One structure: a header and zeros up to its length, then what the test sets.
class ClStructureBuilder {
  public:
    ClStructureBuilder(uint8_t type, uint8_t length, uint16_t handle = 0x0010);

    ClStructureBuilder& Byte(size_t offset, uint8_t value);
    ClStructureBuilder& Word(size_t offset, uint16_t value);
    ClStructureBuilder& Dword(size_t offset, uint32_t value);
    ClStructureBuilder& Qword(size_t offset, uint64_t value);
    ClStructureBuilder& Bytes(size_t offset, std::initializer_list<uint8_t> values);
    ClStructureBuilder& Strings(std::initializer_list<std::string> texts);
    // Adds a string after the others and sets the byte at `offset` to its number.
    ClStructureBuilder& String(size_t offset, std::string text);

    uint8_t Type() const { return m_bytes[0]; }
    // The structure's bytes in a table, with the double NUL.
    std::vector<uint8_t> Image() const;

  private:
    std::vector<uint8_t> m_bytes;
    std::vector<std::string> m_strings;
};

// A test's machine, apart from its table.
struct TestMachine_t {
    uint32_t signature = 0;
    uint8_t major = 3, minor = 0;
};

// The items of one package, in order, with their values as decoded.
class ClItems {
  public:
    struct Item_t {
        std::string key, value;
        bool operator==(const Item_t&) const = default;
    };

    void Add(std::string key, std::string value) { m_items.push_back({std::move(key), std::move(value)}); }
    size_t Count() const { return m_items.size(); }
    const Item_t& operator[](size_t index) const { return m_items.at(index); }
    // The value of the first item with this key; "(no such item)" if there is none.
    std::string Text(const std::string& key) const;
    // All values of items with this key, in order.
    std::vector<std::string> Texts(const std::string& key) const;
    // "KEY=VALUE" lines, for comparing a whole structure.
    std::string Lines() const;

  private:
    std::vector<Item_t> m_items;
};

// A table of these structures and an End-of-Table structure.
std::vector<uint8_t> TableOf(const std::vector<ClStructureBuilder>& structures);

// A table with structures of all types that the standard has, and of some others, in every `step`-th length up to 110.
// Their bytes are random, the same in each run, and often small, as those make short lists.
std::vector<uint8_t> TableOfAllTypes(unsigned step);

// The items of structures of `type` in this table; of a sweep if `type` is 255.
ClItems DecodeTable(const std::vector<uint8_t>& table, uint8_t type, const TestMachine_t& machine = {});
// The items of one structure, decoded by its own type.
ClItems Decode(const ClStructureBuilder& structure, const TestMachine_t& machine = {});
// The items of all structures of the first one's type; the table contains all structures given.
ClItems Decode(const std::vector<ClStructureBuilder>& structures, const TestMachine_t& machine = {});
