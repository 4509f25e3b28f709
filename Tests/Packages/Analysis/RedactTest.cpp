// Redacted tables have no secret left, and say everything else that they said before.
#include "Packages/Analysis/Redact.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "Packages/Analysis/Findings.h"
#include "Packages/Format/TableFile.h"
#include "Packages/OS/Hmac.h"
#include "Packages/Standard/Facts.h"
#include "Tests/Support/Images.h"
#include "Tests/Support/RealTables.h"
#include "Tests/Support/Structures.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

struct Table_t {
    std::string name;
    Bytes_t bytes;
    uint16_t version = 0x0300;
};

Hmac_t HmacUnder(const std::string& key) {
    return [key](std::span<const uint8_t> message, std::span<uint8_t, 32> mac) {
        return os_HmacSha256({reinterpret_cast<const uint8_t*>(key.data()), key.size()}, message, mac);
    };
}

Bytes_t Redacted(const Table_t& table, bool keepsVendor = false, const std::string& key = "a key for the tests") {
    Bytes_t bytes = table.bytes;
    EXPECT_TRUE(RedactTable(bytes, {.version = table.version, .keepsVendor = keepsVendor}, HmacUnder(key)));
    return bytes;
}

std::string Join(std::initializer_list<std::string_view> parts) {
    std::string all;
    for (const std::string_view part : parts) all += part;
    return all;
}

std::string Lower(std::string text) {
    std::ranges::transform(text, text.begin(), LowerCase);
    return text;
}

std::string Trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    return std::string(text);
}

// A fact as a test compares it. Texts are the bytes of their string.
struct OwnFact_t {
    uint16_t type, handle;
    std::string key;
    int32_t record;
    FactState_t state;
    std::string value;
};

std::vector<OwnFact_t> FactsOf(const Bytes_t& bytes, uint16_t version) {
    std::vector<OwnFact_t> all;
    for (const TableStructure_t& structure : ClWalk(bytes)) {
        ClFacts facts(structure, {.version = version});
        while (facts.Next()) {
            std::string value(facts->string.empty() ? facts->text : facts->string);
            if (facts->kind == FactKind_t::kBytes || facts->kind == FactKind_t::kNumber)
                value.assign(reinterpret_cast<const char*>(facts.Bytes(*facts).data()), facts->size);
            all.push_back(
                {structure.Type(), structure.Handle(), std::string(facts->Key()), facts->record, facts->state, value});
        }
    }
    return all;
}

bool IsRedacted(const OwnFact_t& fact) {
    return std::ranges::any_of(RedactedFacts(), [&](const RedactedFact_t& row) {
        return row.type == fact.type && row.key == fact.key && fact.state == FactState_t::kValue;
    });
}

// The forms of a text in which it must not be found, in lower case: ASCII and UTF-16 in both byte orders.
std::vector<std::string> FormsOf(const std::string& text) {
    std::string little, big;
    for (const char c : Lower(text)) {
        little.append(1, c).append(1, '\0');
        big.append(1, '\0').append(1, c);
    }
    return {Lower(text), little.substr(0, little.size() - 1), big.substr(1)};
}

std::string WithoutDashes(std::string text) {
    std::erase(text, '-');
    return text;
}

std::string BytesByHex(const std::string& digits) {
    std::string bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

// All that must not be found of a UUID, which is given as text.
std::vector<std::string> FormsOfUuid(const std::string& text) {
    const auto pair = [&](size_t place) { return text.substr(place, 2); };
    const std::string swapped =
        Join({pair(6), pair(4), pair(2), pair(0), "-", pair(11), pair(9), "-", pair(16), pair(14), text.substr(18)});
    std::vector<std::string> forms;
    for (const std::string& order : {text, swapped}) {
        for (const std::string& written : {order, WithoutDashes(order)})
            for (const std::string& form : FormsOf(written)) forms.push_back(form);
        forms.push_back(BytesByHex(WithoutDashes(order)));
    }
    return forms;
}

void ExpectNoneIsFound(const std::vector<std::string>& forms, const Bytes_t& bytes, const std::string& what) {
    const std::string all(bytes.begin(), bytes.end());
    const std::string lower = Lower(all);
    for (const std::string& form : forms) {
        EXPECT_EQ(all.find(form), all.npos) << what << ": " << form;
        EXPECT_EQ(lower.find(form), all.npos) << what << ": " << form;
    }
}

// The findings with all that may not change.
std::string Findings(const Bytes_t& bytes, uint16_t version) {
    std::string lines;
    for (const FindingGroup_t& group : FindGroups({.bytes = bytes, .version = version}, {})) {
        lines.append(RuleOf(group.rule).id).append(" ").append(std::to_string(group.type)).append(" ");
        lines.append(group.key).append(" ").append(std::to_string(group.count));
        for (const FindingPlace_t& place : group.places)
            lines.append(" ").append(std::to_string(place.handle)).append("@").append(std::to_string(place.offset));
        lines += "\n";
    }
    return lines;
}

// Tables of this project, and those of real machines if they are here.
std::vector<Table_t> AllTables() {
    std::vector<Table_t> tables = {
        {"all types", TableOfAllTypes(1), 0x0309}
    };
    const auto add = [&](const std::string& name, const Bytes_t& bytes) {
        const TableFound_t found = FindTable(bytes, TableForm_t::kAny);
        ASSERT_TRUE(found.isFound) << name << ": " << found.problem;
        tables.push_back({
            name, {found.table.begin(), found.table.end()},
             static_cast<uint16_t>(found.major << 8 | found.minor)
        });
    };
    for (const TableImage_t& image : GeneratedImages()) add(image.name, image.bytes);
    for (const RealTable_t& real : RealTables()) tables.push_back({real.name, real.table, real.version});
    return tables;
}

TEST(Redact, TablesKeepTheirFactsAndFindingsAndNoSecret) {
    // From each value to its only pseudonym, and back, in all tables: so any two differ where their originals do.
    std::map<std::pair<std::string, std::string>, std::string> pseudonyms, values;
    for (const Table_t& table : AllTables()) {
        SCOPED_TRACE(table.name);
        const Bytes_t redacted = Redacted(table);
        EXPECT_EQ(Findings(redacted, table.version), Findings(table.bytes, table.version));
        const std::vector<OwnFact_t> before = FactsOf(table.bytes, table.version);
        const std::vector<OwnFact_t> after = FactsOf(redacted, table.version);
        ASSERT_EQ(before.size(), after.size());
        for (size_t i = 0; i < before.size(); i++) {
            const OwnFact_t &first = before[i], &second = after[i];
            const std::string key = Join({std::to_string(first.type), " ", first.key});
            ASSERT_EQ(Join({std::to_string(second.type), " ", second.key}), key);
            EXPECT_EQ(second.state, first.state) << key << " of " << first.handle << ": " << first.value;
            EXPECT_EQ(second.value.size(), first.value.size()) << key;
            if (table.name == "all types") continue;  // its texts are random, and so is what stands in them
            EXPECT_EQ(pseudonyms.try_emplace({key, first.value}, second.value).first->second, second.value) << key;
            EXPECT_EQ(values.try_emplace({key, second.value}, first.value).first->second, first.value) << key;
            if (!IsRedacted(first)) continue;
            // Nothing is left to hide in a number of 0. Other tests are for the parts of type 42.
            if (first.type == 42 || first.value == std::string(2, '\0')) continue;
            EXPECT_NE(second.value, first.value) << key;
            if (first.key == "uuid")
                ExpectNoneIsFound(FormsOfUuid(first.value), redacted, key);
            else if (Trimmed(first.value).size() >= 6)
                ExpectNoneIsFound(FormsOf(Trimmed(first.value)), redacted, key);
        }
    }
}

// A machine whose vendor repeats what identifies it in every way that there is.
struct Machine_t {
    static constexpr char kSerial[] = "HV24-0811-00417", kUuid[] = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9";
    Table_t table;
    std::vector<std::string> secrets;  // forms that must not be found
};

std::string Wide(const std::string& text) {
    std::string wide;
    for (const char c : text) wide.append(1, c).append(1, '\0');
    return wide;
}

void Put(ClStructureBuilder& structure, size_t offset, const std::string& bytes) {
    for (size_t i = 0; i < bytes.size(); i++) structure.Byte(offset + i, static_cast<uint8_t>(bytes[i]));
}

Machine_t MachineThatRepeatsItself() {
    Machine_t machine;
    const std::string serial = Machine_t::kSerial, uuid = Machine_t::kUuid;
    const std::string mac = "\x02\x1A\x2B\x3C\x4D\x5E", usbMac = "\xA4\xBB\x6D\x10\x20\x31";
    ClStructureBuilder system(1, 0x1B, 0x0100);
    system.Bytes(4, {1, 2, 0, 3}).Strings({"Halvorsen", "Fjelltind", Join({"  ", serial, " "})});
    Put(system, 8, BytesByHex("3d2c1b0a5f4e71608293a4b5c6d7e8f9"));
    ClStructureBuilder interface(42, 6 + 13 + 1 + 2 + 100, 0x2A00);
    interface.Byte(4, 0x40).Byte(5, 13).Bytes(6, {4, 13, 0, 0, 0, 0, 1}).Byte(6 + 13, 1).Bytes(20, {4, 100});
    Put(interface, 6 + 7, usbMac);
    Put(interface, 22, BytesByHex("00112233445566778899aabbccddeeff"));
    interface.Byte(22 + 17, 1).Bytes(22 + 18, {192, 168, 7, 9}).Byte(22 + 90, 8).Strings({"USBSERIAL77"});
    Put(interface, 22 + 91, "fjell-07");
    ClStructureBuilder data(200, 4 + 30 + 16 + 6 + 6, 0xC800);
    Put(data, 4, Wide(serial));
    Put(data, 34, BytesByHex("0a1b2c3d4e5f60718293a4b5c6d7e8f9"));
    Put(data, 50, mac);
    Put(data, 56, usbMac);
    machine.table = {"machine",
                     TableOf({system, interface, data,
                              ClStructureBuilder(11, 5, 0x0B00)
                                  .Byte(4, 7)
                                  .Strings({Join({"SN=", Lower(serial), ";"}), "0A1B2C3D4E5F60718293A4B5C6D7E8F9",
                                            "3d2c1b0a-5f4e-7160-8293-a4b5c6d7e8f9", "LAN 02:1a:2b:3c:4D:5E",
                                            "021A2B3C4D5E", "a4-bb-6d-10-20-31 fjell-07", "USBSERIAL77"}),
                              ClStructureBuilder(126, 5, 0x7E00).Byte(4, 1).Strings({"INACTIVE42"})}),
                     0x0306};
    for (const std::string& text :
         {serial, std::string("021a2b3c4d5e"), std::string("02:1a:2b:3c:4d:5e"), std::string("a4bb6d102031"),
          std::string("a4-bb-6d-10-20-31"), std::string("USBSERIAL77"), std::string("fjell-07")})
        for (const std::string& form : FormsOf(text)) machine.secrets.push_back(form);
    for (const std::string& form : FormsOfUuid(uuid)) machine.secrets.push_back(form);
    for (const std::string& form : FormsOfUuid("00112233-4455-6677-8899-aabbccddeeff")) machine.secrets.push_back(form);
    machine.secrets.insert(machine.secrets.end(), {mac, usbMac, std::string("\xC0\xA8\x07\x09")});
    return machine;
}

TEST(Redact, SecretsAreReplacedWhereverTheyAre) {
    const Machine_t machine = MachineThatRepeatsItself();
    for (const bool keepsVendor : {false, true}) {
        const Bytes_t redacted = Redacted(machine.table, keepsVendor);
        ExpectNoneIsFound(machine.secrets, redacted, keepsVendor ? "vendor bytes kept" : "");
        // What is left says the same: the serial number within another text, and the UUID in its other forms.
        std::vector<std::string> texts;
        std::string serial, uuid;
        for (const OwnFact_t& fact : FactsOf(redacted, machine.table.version)) {
            if (fact.key == "serial_number") serial = Trimmed(fact.value);
            if (fact.key == "uuid") uuid = fact.value;
            if (fact.type == 11 && fact.key == "string") texts.push_back(fact.value);
        }
        ASSERT_EQ(texts.size(), 7u);
        EXPECT_EQ(texts[0], Join({"SN=", Lower(serial), ";"}));
        EXPECT_EQ(Lower(texts[1]), WithoutDashes(uuid));
        EXPECT_EQ(texts[3].substr(0, 4), "LAN ");
        EXPECT_EQ(WithoutDashes(uuid).substr(16), WithoutDashes(texts[2]).substr(16));
        const std::string all(redacted.begin(), redacted.end());
        EXPECT_EQ(all.find(Wide(serial)) != all.npos, keepsVendor);
        EXPECT_EQ(all.find("INACTIVE42") != all.npos, keepsVendor);
        EXPECT_NE(all.find("Fjelltind"), all.npos);
    }
    EXPECT_EQ(Redacted(machine.table), Redacted(machine.table));
    EXPECT_NE(Redacted(machine.table), Redacted(machine.table, false, "another key"));
}

// Two that overlap, and one that another begins with.
TEST(Redact, EveryOneOfSecretsThatTouchIsReplaced) {
    std::vector<ClStructureBuilder> modules;
    uint16_t handle = 0x1100;
    for (const char* serial : {"123456", "6789AB", "123456789ABCDE"})
        modules.push_back(ClStructureBuilder(17, 0x1B, handle++).Byte(0x18, 1).Strings({serial}));
    modules.push_back(ClStructureBuilder(11, 5, 0x0B00).Byte(4, 2).Strings({"123456789AB", "x123456789ABCDEx"}));
    for (const char* key : {"first key", "second key", "third key", "fourth key", "fifth key"}) {
        const Bytes_t redacted = Redacted({"touching", TableOf(modules)}, false, key);
        ExpectNoneIsFound({"123456", "6789ab"}, redacted, key);
    }
}

// A string that has the bytes of a UUID in it.
TEST(Redact, StringsKeepTheirControlCharacters) {
    const std::string uuid = BytesByHex("01417f424344454647481f4a4b4c4d80");
    ClStructureBuilder system(1, 0x1B, 0x0100), strings(11, 5, 0x0B00);
    Put(system, 8, uuid);
    strings.Byte(4, 1).Strings({uuid});
    const Bytes_t redacted = Redacted({"control characters", TableOf({system, strings})});
    for (const OwnFact_t& fact : FactsOf(redacted, 0x0300)) {
        if (fact.type != 11 || fact.key != "string") continue;
        ASSERT_EQ(fact.value.size(), uuid.size());
        for (size_t i = 0; i < uuid.size(); i++) {
            const bool isControl = uuid[i] == '\x01' || uuid[i] == '\x7F' || uuid[i] == '\x1F';
            EXPECT_EQ(fact.value[i] == uuid[i], isControl) << i;
        }
        return;
    }
    FAIL() << "no string";
}

TEST(Pseudonyms, ShortValuesArePermuted) {
    const Hmac_t hmac = HmacUnder("a key for the tests");
    ClPseudonyms pseudonyms(hmac);
    std::vector<std::vector<std::string>> sets(5);
    for (int c = 0x21; c < 0x7F; c++) sets[0].emplace_back(1, static_cast<char>(c));
    for (int i = 0; i < 100; i++) sets[1].push_back({static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)});
    for (int i = 0; i < 676; i++) sets[2].push_back({static_cast<char>('a' + i / 26), static_cast<char>('A' + i % 26)});
    for (int i = 0; i < 10000; i++) sets[3].push_back(std::to_string(100000 + i).substr(1));
    for (int i = 0; i < 1000; i++) sets[4].push_back(Join({"-", std::to_string(1000 + i).substr(1), "\xE9"}));
    for (const std::vector<std::string>& set : sets) {
        std::set<std::string> seen;
        size_t values = 0;
        for (const std::string& value : set) {
            if (IsFiller(value)) continue;
            std::string pseudonym = value;
            pseudonyms.Text(pseudonym);
            EXPECT_NE(pseudonym, value);
            EXPECT_FALSE(IsFiller(pseudonym)) << pseudonym;
            EXPECT_EQ(pseudonym.size(), value.size());
            for (size_t i = 0; i < value.size(); i++)
                EXPECT_EQ(std::isdigit(static_cast<unsigned char>(pseudonym[i])) != 0,
                          std::isdigit(static_cast<unsigned char>(value[i])) != 0);
            seen.insert(pseudonym);
            values++;
        }
        EXPECT_EQ(seen.size(), values);
    }
    std::set<Bytes_t> words;
    for (uint32_t word = 1; word < 0xFFFF; word++) {
        Bytes_t bytes = {static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8)};
        pseudonyms.Bytes(bytes);
        words.insert(bytes);
    }
    EXPECT_EQ(words.size(), 0xFFFEu);
    EXPECT_FALSE(words.contains({0, 0}) || words.contains({0xFF, 0xFF}));
}

TEST(Redact, DamagedTablesAndAMissingHmacDoNoHarm) {
    const Bytes_t whole = MachineThatRepeatsItself().table.bytes;
    for (size_t size = 0; size < whole.size(); size++)
        Redacted({
            "cut", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}
        });
    Bytes_t bytes = whole;
    EXPECT_FALSE(RedactTable(bytes, {}, [](auto, auto) { return false; }));
    Redacted({
        "shorter than a header", {200, 0, 0, 1, 200, 0, 0, 2, 1, 0, 0}
    });
    // A serial number whose last bytes are the table's.
    bytes = ClStructureBuilder(1, 8).Byte(7, 1).Strings({Machine_t::kSerial}).Image();
    bytes.erase(bytes.end() - 2, bytes.end());
    ExpectNoneIsFound(FormsOf(Machine_t::kSerial), Redacted({"cut off", bytes}), "cut off");
    // Bytes after the end of the table belong to nothing that is known.
    bytes = whole;
    bytes.insert(bytes.end(), {'t', 'r', 'a', 'c', 'e'});
    EXPECT_EQ(Redacted({"longer", bytes}).back(), 0);
}

TEST(Redact, ItsTableNamesFacts) {
    for (const RedactedFact_t& row : RedactedFacts()) {
        const StandardType_t type = FindStandardType(row.type);
        EXPECT_TRUE(std::ranges::any_of(type.fields, [&](const StandardField_t& field) {
            return type.Text(field.key) == row.key;
        })) << row.key;
    }
}

}  // namespace
