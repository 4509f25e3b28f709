#include "Tests/Support/Structures.h"

#include <gtest/gtest.h>
#include <random>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Sources/Quorlin.h"

ClStructureBuilder::ClStructureBuilder(uint8_t type, uint8_t length, uint16_t handle)
    : m_bytes(length < 4 ? 4 : length) {
    m_bytes[0] = type;
    m_bytes[1] = length;
    Word(2, handle);
}

ClStructureBuilder& ClStructureBuilder::Byte(size_t offset, uint8_t value) {
    m_bytes.at(offset) = value;
    return *this;
}

ClStructureBuilder& ClStructureBuilder::Word(size_t offset, uint16_t value) {
    return Byte(offset, static_cast<uint8_t>(value)).Byte(offset + 1, static_cast<uint8_t>(value >> 8));
}

ClStructureBuilder& ClStructureBuilder::Dword(size_t offset, uint32_t value) {
    return Word(offset, static_cast<uint16_t>(value)).Word(offset + 2, static_cast<uint16_t>(value >> 16));
}

ClStructureBuilder& ClStructureBuilder::Qword(size_t offset, uint64_t value) {
    return Dword(offset, static_cast<uint32_t>(value)).Dword(offset + 4, static_cast<uint32_t>(value >> 32));
}

ClStructureBuilder& ClStructureBuilder::Bytes(size_t offset, std::initializer_list<uint8_t> values) {
    for (const uint8_t value : values) Byte(offset++, value);
    return *this;
}

ClStructureBuilder& ClStructureBuilder::Strings(std::initializer_list<std::string> texts) {
    m_strings.insert(m_strings.end(), texts);
    return *this;
}

ClStructureBuilder& ClStructureBuilder::String(size_t offset, std::string text) {
    m_strings.push_back(std::move(text));
    return Byte(offset, static_cast<uint8_t>(m_strings.size()));
}

std::vector<uint8_t> ClStructureBuilder::Image() const {
    std::vector<uint8_t> image = m_bytes;
    for (const std::string& text : m_strings) {
        image.insert(image.end(), text.begin(), text.end());
        image.push_back(0);
    }
    if (m_strings.empty()) image.push_back(0);
    image.push_back(0);
    return image;
}

std::string ClItems::Text(const std::string& key) const {
    const std::vector<std::string> texts = Texts(key);
    return texts.empty() ? "(no such item)" : texts.front();
}

std::vector<std::string> ClItems::Texts(const std::string& key) const {
    std::vector<std::string> texts;
    for (const Item_t& item : m_items)
        if (item.key == key) texts.push_back(item.value);
    return texts;
}

std::string ClItems::Lines() const {
    std::string lines;
    for (const Item_t& item : m_items) lines += item.key + "=" + item.value + "\n";
    return lines;
}

std::vector<uint8_t> TableOf(const std::vector<ClStructureBuilder>& structures) {
    std::vector<uint8_t> table;
    for (const ClStructureBuilder& structure : structures) {
        const std::vector<uint8_t> image = structure.Image();
        table.insert(table.end(), image.begin(), image.end());
    }
    table.insert(table.end(), {127, 4, 0xFF, 0xFE, 0, 0});
    return table;
}

std::vector<uint8_t> TableOfAllTypes(unsigned step) {
    std::mt19937 random(3);
    std::vector<ClStructureBuilder> structures;
    for (unsigned type = 0; type < 134; type++) {
        if (type == 127 || (type > 48 && type < 124)) continue;
        for (unsigned length = 4; length <= 110; length += step) {
            ClStructureBuilder structure(static_cast<uint8_t>(type), static_cast<uint8_t>(length),
                                         static_cast<uint16_t>(random()));
            for (unsigned place = 4; place < length; place++)
                structure.Byte(place, static_cast<uint8_t>(random() % (random() % 2 == 0 ? 5 : 256)));
            if (random() % 4 != 0) structure.Strings({"One", "Default string", std::string(1 + random() % 20, 'x')});
            structures.push_back(structure);
        }
    }
    return TableOf(structures);
}

ClItems DecodeTable(const std::vector<uint8_t>& table, uint8_t type, const TestMachine_t& machine) {
    const ImageSource_t source = {table.data(), static_cast<uint32_t>(table.size()), machine.major, machine.minor,
                                  machine.signature};
    EXPECT_EQ(SetImageMachine(&source), kSuccess);
    auto* package = static_cast<Quorlin*>(CreateSmbiosPackageForKovr(0));
    EXPECT_EQ(package->Initialize(), kSuccess);
    EXPECT_EQ(package->GetTypes(type), kSuccess);
    ClItems items;
    std::string line;
    for (uint32_t index = 0; package->GetNextItem(line) == kSuccess; index++) {
        // The key is between the first two quotes. Only a key that comes from a string may contain one.
        const std::string value = package->GetItemValue(index);
        const size_t middle = line.find("\", \"");
        items.Add(line.substr(1, middle - 1), value);
    }
    EXPECT_EQ(items.Count(), package->GetItemCount());
    EXPECT_EQ(package->UnInitialize(), kSuccess);
    DestroySmbiosPackage(package);
    return items;
}

ClItems Decode(const ClStructureBuilder& structure, const TestMachine_t& machine) {
    return Decode(std::vector{structure}, machine);
}

ClItems Decode(const std::vector<ClStructureBuilder>& structures, const TestMachine_t& machine) {
    return DecodeTable(TableOf(structures), structures.front().Type(), machine);
}
