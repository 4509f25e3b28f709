// Compares fields and whole structures with two listings beside this file.
#include <gtest/gtest.h>

#include <iomanip>
#include <map>
#include <sstream>

#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

constexpr uint8_t kEnough = 0x40;  // long enough for every field

std::string Listing(const std::string& name) { return ReadWholeFile(QUORLIN_SOURCE_DIR "/Tests/Sources/" + name); }

// One key of Fields.txt.
struct Field_t {
    int type = 0;
    size_t offset = 0;
    std::string key;
    std::map<uint64_t, std::vector<std::string>> texts;  // of each value; none if it has no item
};

std::vector<Field_t> ListedFields() {
    std::vector<Field_t> fields;
    std::istringstream listing(Listing("Fields.txt"));
    for (std::string line, text; std::getline(listing, line);) {
        std::istringstream words(line);
        words >> std::setbase(0);
        uint64_t value = 0;
        if (line.starts_with(' ')) {
            words >> value;
            fields.back().texts[value].clear();
            if (words >> std::quoted(text)) fields.back().texts[value] = {text};
        } else if (!line.empty() && line[0] != '#') {
            Field_t& field = fields.emplace_back();
            words >> field.type >> field.offset >> std::quoted(field.key);
            if (words >> std::quoted(text))
                for (; value < 256; value++) field.texts[value] = {text};
        }
    }
    return fields;
}

TEST(Fields, ReadAsListed) {
    const std::vector<Field_t> fields = ListedFields();
    EXPECT_GT(fields.size(), 100u);
    for (const Field_t& field : fields) {
        std::vector<ClStructureBuilder> structures;
        std::vector<std::string> expected;
        for (const auto& [value, texts] : field.texts) {
            // One device instead of as many as fit.
            ClStructureBuilder structure(static_cast<uint8_t>(field.type), field.type == 10 ? 6 : kEnough);
            structure.Strings({"first", "second"});
            // A BIOS without a version has no further items.
            if (field.type == 0) structure.Byte(5, 1);
            for (size_t place = 0; place < 8; place++)
                if (const auto byte = static_cast<uint8_t>(value >> 8 * place); byte != 0)
                    structure.Byte(field.offset + place, byte);
            structures.push_back(structure);
            expected.insert(expected.end(), texts.begin(), texts.end());
        }
        EXPECT_EQ(Decode(structures).Texts(field.key), expected) << "type " << field.type << ", " << field.key;
    }
}

TEST(Structures, ReadAsListed) {
    std::string listing = Listing("Structures.txt");
    size_t count = 0;
    // A blank line ends each one.
    for (size_t end = 0; (end = listing.find("\n\n")) != listing.npos; listing.erase(0, end + 2)) {
        if (listing[0] == '#') continue;
        count++;
        const size_t head = listing.find('\n');
        std::istringstream words(listing.substr(0, head));
        words >> std::setbase(0);
        unsigned type = 0, length = 0, value = 0;
        TestMachine_t machine;
        words >> type;
        if (words.peek() == '@') words.ignore() >> machine.signature;
        words >> length;
        ClStructureBuilder structure(static_cast<uint8_t>(type), static_cast<uint8_t>(length));
        for (unsigned offset = 4; offset < length; offset++) structure.Byte(offset, static_cast<uint8_t>(offset));
        char equals = 0;
        for (size_t offset = 0; words >> offset >> equals >> value;)
            structure.Byte(offset, static_cast<uint8_t>(value));
        words.clear();
        bool hasOwnStrings = false;
        for (std::string text; words >> std::quoted(text); hasOwnStrings = true) structure.Strings({text});
        for (unsigned number = 1; !hasOwnStrings && number <= kEnough; number++) {
            std::ostringstream text;
            text << "string " << std::hex << std::uppercase << std::setfill('0') << std::setw(2) << number << 'h';
            structure.Strings({text.str()});
        }
        EXPECT_EQ(Decode(structure, machine).Lines(), listing.substr(head + 1, end - head));
    }
    EXPECT_GT(count, 40u);
}

}  // namespace
