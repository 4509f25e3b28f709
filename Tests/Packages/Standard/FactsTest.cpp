// What facts say of single structures.
#include "Packages/Standard/Facts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Tests/Support/Structures.h"

namespace {

// A fact in one line: the state unless it is a value, and then number, text or words.
std::string Shown(const ClFacts& facts, const Fact_t& fact) {
    std::string shown;
    switch (fact.kind) {
        case FactKind_t::kNumber:
            shown = fact.isSigned ? std::to_string(static_cast<int64_t>(fact.number)) : std::to_string(fact.number);
            break;
        case FactKind_t::kHandle:
        case FactKind_t::kList: shown = std::to_string(fact.number); break;
        case FactKind_t::kBits:
            facts.ForEachWord(fact,
                              [&](std::string_view word) { shown.append(shown.empty() ? "" : ", ").append(word); });
            break;
        case FactKind_t::kBytes:
            for (const uint8_t byte : facts.Bytes(fact)) {
                char digits[4];
                std::snprintf(digits, sizeof digits, "%02x", byte);
                shown += digits;
            }
            break;
        default: shown = fact.text;
    }
    if (fact.IsValue()) return shown;
    return std::string(StateName(fact.state)) + ":" + shown;
}

// The fact with this key, or with this key in the first record that has it; "(none)" if it isn't listed.
std::string FactOf(const ClStructureBuilder& structure, std::string_view key, const FactOptions_t& options = {}) {
    const std::vector<uint8_t> image = structure.Image();
    ClFacts facts({image.data(), static_cast<uint32_t>(image.size())}, options);
    while (facts.Next())
        if (facts->Key() == key) return Shown(facts, *facts);
    return "(none)";
}

struct Case_t {
    ClStructureBuilder structure;
    const char* key;
    const char* shown;
};

void ExpectFacts(const std::vector<Case_t>& cases, const FactOptions_t& options = {}) {
    for (const Case_t& c : cases) {
        SCOPED_TRACE("type " + std::to_string(c.structure.Type()));
        EXPECT_EQ(FactOf(c.structure, c.key, options), c.shown) << c.key;
    }
}

ClStructureBuilder Of(uint8_t type, uint8_t length) { return ClStructureBuilder(type, length); }

TEST(Facts, NewestCodesHaveTheirWords) {
    ExpectFacts({
        {Of(3, 9).Byte(5, 0xA3), "chassis_type", "Mini PC"},
        {Of(3, 9).Byte(5, 0xA3), "chassis_lock", "Present"},
        {Of(4, 51).Byte(6, 0xFE).Word(0x28, 0x307), "family", "Intel\u00AE Core\u2122 Ultra 9"},
        {Of(9, 24).Byte(5, 0xC3), "slot_type", "PCI Express Gen 5 x16"},
        {Of(17, 100).Byte(0x12, 0x25), "memory_type", "MRDIMM"},
        {Of(17, 100).Byte(0x12, 0x26), "memory_type", "reserved:"},
        {Of(17, 100).Byte(0x0E, 0x13), "form_factor", "CSODIMM"},
        {Of(42, 11).Byte(4, 0x0F).Byte(5, 0), "interface_type", "USB"},
        {Of(42, 11).Byte(4, 0x11).Byte(5, 0), "interface_type", "MCTP Host Interfaces (single values by DSP0239)"},
        {Of(44, 8).Byte(7, 10), "processor_type", "64-bit LoongArch (LoongArch64)"},
        {Of(46, 9).Word(4, 0xC001), "string_property_id", "OEM-specific"},
        {Of(2, 15).Byte(0x0D, 1), "board_type", "unknown:Unknown"},
        {Of(1, 27).Byte(0x18, 0), "wake_up_type", "reserved:Reserved"},
    });
}

TEST(Facts, NumbersAreInTheirUnit) {
    ExpectFacts({
        {Of(0, 26).Byte(9, 0xFE), "rom_size", "16711680"},
        {Of(0, 26).Byte(9, 0xFF).Word(0x18, 0x4002), "rom_size", "2147483648"},
        {Of(0, 24).Byte(9, 0xFF), "rom_size", "16777216"},
        {Of(0, 26).Word(6, 0xE000), "runtime_size", "131072"},
        {Of(0, 26).Word(6, 0), "runtime_size", "none:0"},
        {Of(7, 27).Word(9, 0x8010).Dword(0x17, 0x80000010), "installed_size", "1048576"},
        {Of(7, 27).Word(9, 0xFFFF).Dword(0x17, 0x80001000), "cache_size", "268435456"},
        {Of(7, 15).Word(9, 0x0200), "cache_size", "524288"},
        {Of(7, 15).Word(9, 0), "cache_size", "none:0"},
        {Of(7, 15).Word(5, 0x0182), "cache_level", "3"},
        {Of(16, 23).Dword(7, 0x80000000).Qword(0x0F, 1ull << 45), "capacity", "35184372088832"},
        {Of(16, 15).Dword(7, 0x80000000), "capacity", "unknown:0"},
        {Of(17, 32).Word(0x0C, 0x8200), "memory_size", "524288"},
        {Of(17, 32).Word(0x0C, 0x7FFF).Dword(0x1C, 65536), "memory_size", "68719476736"},
        {Of(17, 27).Word(0x0C, 0x7FFF), "memory_size", "34358689792"},
        {Of(17, 32).Word(0x0C, 0), "memory_size", "none:0"},
        {Of(17, 32).Word(0x0C, 0xFFFF), "memory_size", "unknown:0"},
        {Of(17, 92).Word(0x15, 0xFFFF).Dword(0x54, 70000), "memory_speed", "70000"},
        {Of(17, 92).Word(0x15, 5600).Dword(0x54, 70000), "memory_speed", "5600"},
        {Of(4, 48).Byte(0x23, 0xFF).Word(0x2A, 300), "cores", "300"},
        {Of(4, 42).Byte(0x23, 0xFF), "cores", "255"},
        {Of(4, 48).Byte(0x23, 8).Word(0x2A, 300), "cores", "8"},
        {Of(4, 48).Byte(0x11, 0x8C), "core_voltage", "1200"},
        {Of(4, 48).Byte(0x11, 0x02), "core_voltage", "3300"},
        {Of(4, 48).Byte(0x11, 0x03), "core_voltage", "none:0"},
        {Of(6, 12).Byte(9, 0x85), "installed_module_size", "33554432"},
        {Of(6, 12).Byte(9, 0x7F), "installed_module_size", "none:127"},
        {Of(19, 31).Dword(4, 0).Dword(8, 0x3FFFFF), "range_size", "4294967296"},
        {Of(19, 31).Dword(4, 16).Dword(8, 0), "range_size", "none:0"},
        {Of(19, 31).Dword(4, ~0u).Dword(8, ~0u).Qword(0x0F, 1ull << 40).Qword(0x17, (1ull << 41) - 1), "range_size",
         "1099511627776"},
        {Of(22, 26).Word(0x0A, 5000).Byte(0x15, 10), "battery_capacity", "50000"},
        {Of(25, 9).Byte(4, 0x12), "next_scheduled_power_on_month", "12"},
        {Of(25, 9).Byte(4, 0x13), "next_scheduled_power_on_month", "none:19"},
        {Of(28, 22).Word(6, 0xFF9C), "maximum_value", "-10000"},
        {Of(28, 22).Word(6, 0x8000), "maximum_value", "unknown:32768"},
        {Of(38, 18).Byte(5, 0x20), "ipmi_specification_revision", "2.0"},
        {Of(38, 18).Byte(4, 1).Qword(8, 0x0CA3).Byte(0x10, 0x10), "interface_address", "3235"},
        {Of(43, 31).Byte(8, 2).Dword(0x0A, 0x00070055), "firmware_version", "7.85"},
    });
}

TEST(Facts, TextsAndFillers) {
    ExpectFacts({
        {Of(1, 27).Strings({"Halvorsen"}).Byte(4, 1), "manufacturer", "Halvorsen"},
        {Of(1, 27).Strings({"Halvorsen"}).Byte(4, 2), "manufacturer", "broken:"},
        {Of(1, 27).Strings({"Halvorsen"}), "manufacturer", "none:"},
        {Of(1, 27).Strings({" To Be Filled By O.E.M. "}).Byte(4, 1), "manufacturer", "filler: To Be Filled By O.E.M. "},
        {Of(1, 27).Strings({"   "}).Byte(7, 1), "serial_number", "filler:   "},
        {Of(1, 27).Strings({"0000000"}).Byte(7, 1), "serial_number", "filler:0000000"},
        {Of(1, 27).Strings({"SerNum3"}).Byte(7, 1), "serial_number", "filler:SerNum3"},
        {Of(1, 27).Strings({"0"}).Byte(6, 1), "version", "0"},
        {Of(1, 27).Strings({"Noneberg"}).Byte(4, 1), "manufacturer", "Noneberg"},
        {Of(43, 31).Bytes(4, {'A', 'B', 0, 0}), "vendor_id", "AB"},
        {Of(43, 31), "vendor_id", "none:"},
    });
}

TEST(Facts, DatesVersionsAndAddresses) {
    const auto dated = [](const char* date) { return Of(0, 26).Strings({date}).Byte(8, 1); };
    ExpectFacts({
        {dated("05/12/2023"), "release_date_iso", "2023-05-12"},
        {dated("05/12/98"), "release_date_iso", "1998-05-12"},
        {dated("2023-05-12T10:00:00Z"), "release_date_iso", "2023-05-12"},
        {dated("13/12/2023"), "release_date_iso", "none:"},
        {dated("5/12/2023"), "release_date_iso", "none:"},
        {Of(22, 26).Word(0x12, 24 << 9 | 2 << 5 | 29), "sbds_manufacture_date", "2004-02-29"},
        {Of(22, 26).Word(0x12, 24 << 9 | 2 << 5 | 29), "manufacture_date_iso", "2004-02-29"},
        {Of(22, 26).Word(0x12, 0x01FF), "sbds_manufacture_date", "reserved:"},
        {Of(0, 24).Byte(0x14, 5).Byte(0x15, 17), "platform_firmware_release", "5.17"},
        {Of(0, 24).Byte(0x14, 0xFF).Byte(0x15, 0xFF), "platform_firmware_release", "none:not supported"},
        {Of(9, 17).Word(0x0D, 0).Byte(0x0F, 0x3B).Byte(0x10, 0x0A), "pci_address", "0000:3b:01.2"},
        {Of(9, 17).Word(0x0D, 0xFFFF).Byte(0x0F, 0xFF).Byte(0x10, 0xFF), "pci_address",
         "none:slot kind without a PCI address"},
        {Of(41, 11).Word(7, 1).Byte(9, 2).Byte(0x0A, 0xF8), "pci_address", "0001:02:1f.0"},
        {Of(41, 11).Word(7, 1).Byte(9, 2).Byte(0x0A, 0xFF), "device_number", "none:0"},
    });
    const auto processor = [](uint16_t family) {
        return Of(4, 42).Byte(6, 0xFE).Word(0x28, family).Qword(8, 0xBFEBFBFF000506E3);
    };
    ExpectFacts({
        {processor(0xC6), "signature", "Type 0, Family 6, Model 94, Stepping 3"},
        {processor(0x101), "signature", "none:"},
        {processor(0x101), "features", "none:"},
    });
    EXPECT_EQ(FactOf(processor(0xC6), "features").substr(0, 20), "FPU, VME, DE, PSE, T");
}

TEST(Facts, UuidsFollowTheTablesVersion) {
    ClStructureBuilder structure = Of(1, 27);
    structure.Bytes(8,
                    {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF});
    EXPECT_EQ(FactOf(structure, "uuid", {.version = 0x0206}), "00112233-4455-6677-8899-aabbccddeeff");
    EXPECT_EQ(FactOf(structure, "uuid", {.version = 0x0205}), "33221100-5544-7766-8899-aabbccddeeff");
    EXPECT_EQ(FactOf(Of(1, 27), "uuid"), "filler:00000000-0000-0000-0000-000000000000");
}

TEST(Facts, BitListsAreWords) {
    ExpectFacts({
        {Of(17, 27).Word(0x13, 0x4080), "type_detail", "Synchronous, Unbuffered (Unregistered)"},
        {Of(17, 27).Word(0x13, 0x0004), "type_detail", "unknown:Unknown"},
        {Of(17, 27).Word(0x13, 0x0084), "type_detail", "Unknown, Synchronous"},
        {Of(17, 27).Word(0x13, 0), "type_detail", ""},
        {Of(0, 26).Qword(0x0A, 8), "firmware_characteristics", "none:Firmware Characteristics are not supported"},
        {Of(4, 48).Byte(0x18, 0x41), "cpu_status", "CPU Enabled"},
        {Of(4, 48).Byte(0x18, 0x41), "status", "CPU Socket Populated"},
    });
}

TEST(Facts, AShortStructureHasNoFactPastItsLength) {
    const ClStructureBuilder structure = Of(17, 0x1B).Strings({"Norvane", "Row 3"});
    EXPECT_EQ(FactOf(structure, "part_number"), "none:");
    EXPECT_EQ(FactOf(structure, "attributes"), "(none)");
    EXPECT_EQ(FactOf(structure, "rank"), "(none)");
    EXPECT_EQ(FactOf(structure, "attributes", {.listsAbsent = true}), "absent:0");
    EXPECT_EQ(FactOf(structure, "rank", {.listsAbsent = true}), "absent:0");
    EXPECT_EQ(FactOf(Of(17, 0x1D), "extended_size"), "(none)") << "only a part of it is there";
}

TEST(Facts, HandlesAreJudgedByTheTable) {
    const std::vector<uint8_t> table = TableOf({ClStructureBuilder(16, 15, 0x1000), ClStructureBuilder(7, 15, 0x0700)});
    const ClHandles handles(table);
    const FactOptions_t options = {.handles = &handles};
    const auto device = [](uint16_t array) { return Of(17, 27).Word(4, array).Word(6, 0xFFFE); };
    EXPECT_EQ(FactOf(device(0x1000), "physical_memory_array_handle", options), "4096");
    EXPECT_EQ(FactOf(device(0x0700), "physical_memory_array_handle", options), "broken:1792") << "of another type";
    EXPECT_EQ(FactOf(device(0x1001), "physical_memory_array_handle", options), "broken:4097");
    EXPECT_EQ(FactOf(device(0x1001), "physical_memory_array_handle"), "4097") << "without a table";
    EXPECT_EQ(FactOf(device(0x1000), "memory_error_information_handle", options), "none:65534");
}

// The facts of a list's records, as "0.key=..." in a line each.
std::string Records(const ClStructureBuilder& structure, const FactOptions_t& options = {}) {
    const std::vector<uint8_t> image = structure.Image();
    ClFacts facts({image.data(), static_cast<uint32_t>(image.size())}, options);
    std::string lines;
    while (facts.Next()) {
        if (facts->kind == FactKind_t::kList)
            lines.append(facts->Key()).append("=").append(Shown(facts, *facts)) += '\n';
        if (facts->record < 0) continue;
        lines.append(std::to_string(facts->record)).append(".").append(facts->Key()).append("=");
        lines.append(Shown(facts, *facts)) += '\n';
    }
    return lines;
}

TEST(Facts, ListsHaveARecordForEachEntry) {
    EXPECT_EQ(Records(Of(2, 19).Byte(0x0E, 2).Word(0x0F, 0x0400).Word(0x11, 0x0401)),
              "contained_object_handles=2\n0.contained_object_handle=1024\n1.contained_object_handle=1025\n");
    const ClStructureBuilder chassis =
        Of(3, 27).Byte(0x13, 2).Byte(0x14, 2).Bytes(0x15, {0x83, 1, 0x91, 0, 1, 0x01}).Strings({"SKU 7"});
    EXPECT_EQ(Records(chassis),
              "contained_elements=2\n0.contained_element_type=131\n0.type=3\n"
              "0.type_select=SMBIOS structure type enumeration\n0.contained_element_minimum=1\n"
              "1.contained_element_type=145\n1.type=17\n1.type_select=SMBIOS structure type enumeration\n"
              "1.contained_element_minimum=0\n")
        << "records of two bytes";
    EXPECT_EQ(FactOf(chassis, "sku_number"), "SKU 7") << "after the list";
    EXPECT_EQ(FactOf(chassis, "rack_type"), "OU (OpenU)");
    EXPECT_EQ(Records(Of(10, 8).Bytes(4, {0x83, 1, 0x05, 2}).Strings({"A", "B"})),
              "devices=2\n0.device_type=131\n0.type_of_device=Video\n0.device_status=Enabled\n0.description_string=A\n"
              "1.device_type=5\n1.type_of_device=Ethernet\n1.device_status=Disabled\n1.description_string=B\n");
    EXPECT_EQ(Records(Of(40, 17).Byte(4, 2).Bytes(5, {6, 0, 4, 8, 1, 0xAB, 6, 1, 4, 9, 0, 0xCD}).Strings({"text"})),
              "additional_information_entries=2\n0.entry_length=6\n0.referenced_handle=1024\n0.referenced_offset=8\n"
              "0.string=text\n0.value=ab\n1.entry_length=6\n1.referenced_handle=1025\n1.referenced_offset=9\n"
              "1.string=none:\n1.value=cd\n");
    const ClStructureBuilder host = Of(42, 0x12).Bytes(4, {0x40, 2, 0xAA, 0xBB, 2, 4, 1, 0x55, 3, 3, 1, 2, 3});
    EXPECT_EQ(FactOf(host, "interface_type_specific_data"), "aabb");
    EXPECT_EQ(Records(host),
              "protocol_records=2\n0.protocol_type=Redfish over IP\n"
              "0.protocol_type_specific_data_length=1\n0.protocol_type_specific_data=55\n"
              "1.protocol_type=MCTP\n1.protocol_type_specific_data_length=3\n"
              "1.protocol_type_specific_data=010203\n");
    EXPECT_EQ(FactOf(Of(42, 9).Bytes(4, {2, 1, 2, 3, 4}), "interface_type_specific_data", {.version = 0x0207}),
              "01020304")
        << "before 3.2";
    EXPECT_EQ(Records(Of(32, 13).Bytes(0x0A, {6, 1, 2})),
              "boot_status=1\n0.status=System security violation\n0.additional_data=0102\n");
    EXPECT_EQ(Records(Of(11, 5).Byte(4, 2).Strings({"one", "two", "three"})),
              "strings=2\n0.string=one\n1.string=two\n");
    EXPECT_EQ(Records(Of(200, 8).Strings({"one"})), "strings=1\n0.string=one\n") << "a vendor's structure";
    EXPECT_EQ(FactOf(Of(200, 8).Dword(4, 0x04030201), "data"), "01020304");
}

TEST(Facts, ListsLongerThanTheirStructureAreBroken) {
    const struct {
        ClStructureBuilder structure;
        const char* list;
    } cases[] = {
        {Of(2, 19).Byte(0x0E, 3), "contained_object_handles"},
        {Of(3, 25).Byte(0x13, 255).Byte(0x14, 3), "contained_elements"},
        {Of(3, 25).Byte(0x13, 255).Byte(0x14, 0), "contained_elements"},
        {Of(5, 20).Byte(0x0E, 255), "memory_module_configuration_handles"},
        {Of(9, 24).Byte(0x12, 255), "peer_groups"},
        {Of(11, 5).Byte(4, 255).Strings({"one"}), "strings"},
        {Of(15, 29).Byte(0x15, 255).Byte(0x16, 2), "list_of_supported_event_log_type_descriptors"},
        {Of(37, 13).Byte(6, 255), "memory_devices"},
        {Of(40, 17).Byte(4, 255).Byte(5, 12), "additional_information_entries"},
        {Of(40, 17).Byte(4, 2).Byte(5, 0), "additional_information_entries"},
        {Of(42, 11).Byte(5, 0).Byte(6, 255), "protocol_records"},
        {Of(42, 11).Byte(5, 255), "interface_type_specific_data"},
        {Of(44, 12).Byte(6, 255), "processor_specific_block"},
        {Of(45, 26).Byte(0x17, 255), "associated_component_handles"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.list);
        EXPECT_EQ(FactOf(c.structure, c.list, {.version = 0x0302}).substr(0, 7), "broken:");
        EXPECT_EQ(Records(c.structure, {.version = 0x0302}).find("0."), std::string::npos);
    }
}

// Lookups need rising codes without overlaps, and the code after the last one must not be assigned.
TEST(Standard, EnumerationsRise) {
    size_t enumerations = 0;
    for (unsigned number = 0; number < 256; number++) {
        const StandardType_t type = FindStandardType(static_cast<uint8_t>(number));
        EXPECT_EQ(type.type, number);
        for (const StandardField_t& field : type.fields) {
            if (field.form != Form_t::kCode) continue;
            SCOPED_TRACE(std::string(type.Name()) + ", " + std::string(type.Text(field.name)));
            enumerations++;
            const StandardCode_t* last = nullptr;
            for (const StandardCode_t& code : type.Codes(field)) {
                EXPECT_LE(code.first, code.last);
                if (last != nullptr) {
                    EXPECT_LT(last->last, code.first);
                }
                EXPECT_EQ(type.FindCode(field, code.first), &code);
                EXPECT_EQ(type.FindCode(field, code.last), &code);
                last = &code;
            }
            ASSERT_NE(last, nullptr);
            EXPECT_EQ(type.FindCode(field, last->last + 1u), nullptr);
        }
    }
    EXPECT_GT(enumerations, 70u);
}

// All codes of the enumerations at a fixed place, also those that the standard doesn't assign.
TEST(Standard, EveryCodeReadsItsWord) {
    size_t codes = 0;
    for (unsigned number = 0; number < 256; number++) {
        const StandardType_t type = FindStandardType(static_cast<uint8_t>(number));
        for (const StandardField_t& field : type.TopFields()) {
            if (field.form != Form_t::kCode || !field.HasFixedPlace()) continue;
            const std::string key(type.Text(field.key));
            const unsigned end = 1u << std::min(field.IsPart() ? field.bits : field.width * 8, 10);
            for (unsigned code = 0; code < end; code++) {
                const auto isCode = [=](const auto& row) { return code >= row.first && code <= row.last; };
                if (std::ranges::any_of(type.Specials(field), isCode)) continue;
                const auto rows = type.Codes(field);
                const auto row = std::ranges::find_if(rows, isCode);
                const std::string word(row == rows.end() ? "" : type.Text(row->word));
                const FactState_t state = row == rows.end() ? FactState_t::kReserved : row->state;
                const std::string prefix = state == FactState_t::kValue ? "" : std::string(StateName(state)) + ":";
                EXPECT_EQ(FactOf(Of(type.type, 120).Word(field.offset, static_cast<uint16_t>(code << field.low)), key,
                                 {.version = 0x0309}),
                          prefix + word)
                    << "type " << number << ", " << key << ", code " << code;
                codes++;
            }
        }
    }
    EXPECT_GT(codes, 10000u);
}

}  // namespace
