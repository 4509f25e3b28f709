// System slots and on-board devices, and what the machine has there.
#include <map>

#include "Packages/Analysis/Verify.h"
#include "Packages/Format/TextLines.h"
#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/PciNames.h"
#include "Tools/quorlin/Report/Sections.h"

namespace {

constexpr uint64_t kInUse = 4;  // a code of the standard's table

struct Row_t {
    const ClStructures::Entry_t* entry = nullptr;
    std::string label, type, width, usage, address;
    bool isUsed = false;
    uint32_t lanes = 0;
    std::string className, device;
};

// "3" of "PCI Express Gen 3 x8".
std::string GenerationOf(std::string_view type) {
    constexpr std::string_view kWord = "Gen ";
    const size_t at = type.find(kWord);
    if (at == type.npos) return {};
    const size_t begin = at + kWord.size();
    return std::string(type.substr(begin, type.find_first_not_of("0123456789.", begin) - begin));
}

// Of facts whose text lives in the walk, too.
Row_t RowOf(const ClStructures::Entry_t& entry, const FactOptions_t& options) {
    Row_t row;
    row.entry = &entry;
    ClFacts facts(entry.structure, options);
    while (facts.Next()) {
        if (facts->record >= 0 || facts->state == FactState_t::kNone || facts->state == FactState_t::kBroken) continue;
        const std::string_view key = facts->Key();
        const std::string text = ShownValue(facts, *facts);
        if (key == "slot_designation" || key == "reference_designation") row.label = text;
        if (key == "slot_type" || key == "type_of_device") row.type = text;
        if (key == "slot_data_bus_width") row.width = text, row.lanes = LanesOf(facts->number);
        if (key == "current_usage" || key == "device_status") row.usage = text;
        if (key == "current_usage") row.isUsed = facts->IsValue() && facts->number == kInUse;
        if (key == "device_status") row.isUsed = facts->IsValue() && facts->number == 1;
        if (key == "pci_address" && facts->IsValue()) row.address = text;
    }
    if (row.label.empty()) row.label = Filled(kTextUnnamedSlot, {HandleText(entry.structure.Handle())});
    return row;
}

// What a device is, in numbers and words.
void Describe(const PciName_t& name, Row_t& row) {
    AppendHex(row.className, name.classCode, 6);
    if (!name.className.empty()) row.className.append(" ").append(name.className);
    AppendHex(row.device, name.vendor, 4);
    AppendHex(row.device += ':', name.device, 4);
    for (const std::string* part : {&name.vendorName, &name.deviceName})
        if (!part->empty()) row.device.append(" ").append(*part);
}

// The machine's devices at the addresses of the rows.
void AddDevices(const RecordedHardware_t& hardware, std::vector<Row_t>& rows) {
    if (hardware.functions.empty()) return;
    std::map<std::string, size_t> places;  // of devices, by address
    std::vector<PciName_t> devices;
    for (const PciFunction_t& function : hardware.functions) {
        const std::vector<uint8_t>& bytes = function.bytes;
        PciName_t device = {};
        device.vendor = static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
        device.device = static_cast<uint16_t>(bytes[2] | bytes[3] << 8);
        device.classCode = static_cast<uint32_t>(bytes[9] | bytes[10] << 8 | bytes[11] << 16);
        places.try_emplace(PciAddress(function.location), devices.size());
        devices.push_back(device);
    }
    NamePciDevices(devices);
    for (Row_t& row : rows) {
        const auto found = places.find(row.address);
        if (found != places.end())
            Describe(devices[found->second], row);
        else if (!row.address.empty())
            row.device = TextOf(kTextNoDevice);
    }
}

// A slot as long as it has lanes, filled if it is used.
void PutPicture(const Row_t& row, ClHtml& html) {
    const uint64_t width = 24 + 4 * uint64_t{row.lanes};
    html << "<svg role=\"img\" width=\"";
    html.Number(width + 4) << "\" height=\"18\" viewBox=\"0 0 ";
    html.Number(width + 4) << " 18\"><title>";
    html.Text(row.label) << "</title><desc>";
    html.Text(row.width).Raw(", ").Text(row.usage) << "</desc><path class=\"box ";
    html.Text(row.isUsed ? "full" : "empty") << "\" d=\"M2 2h";
    html.Number(width) << "v14H2z\"/><path class=\"mark\" d=\"M18 2v14\"/></svg>";
}

}  // namespace

void WriteSlots(const Report_t& report, const ClStructures& structures, ClHtml& html) {
    std::vector<Row_t> rows;
    for (const ClStructures::Entry_t& entry : structures.All())
        if (entry.structure.Type() == 9 || entry.structure.Type() == 41)
            rows.push_back(RowOf(entry, structures.Options()));
    if (rows.empty()) return;
    const bool hasDevices = report.hardware != nullptr;
    if (hasDevices) AddDevices(*report.hardware, rows);
    const std::string_view label = TextOf(kTextSlotsAndDevices);
    if (hasDevices)
        BeginTable(label,
                   {kTextSlot, kTextPicture, kTextType, kTextWidth, kTextGeneration, kTextUsage, kTextAddress,
                    kTextClass, kTextDevice},
                   html);
    else
        BeginTable(label, {kTextSlot, kTextPicture, kTextType, kTextWidth, kTextGeneration, kTextUsage, kTextAddress},
                   html);
    for (const Row_t& row : rows) {
        html << "<tr><th>";
        PutLink(row.entry, row.label, html);
        html << "<td>";
        if (row.entry->structure.Type() == 9) PutPicture(row, html);
        const std::string generation = GenerationOf(row.type);
        for (const std::string* text : {&row.type, &row.width, &generation, &row.usage, &row.address}) {
            html << "<td>";
            html.Text(*text);
        }
        if (hasDevices) {
            html << "<td>";
            html.Text(row.className) << "<td>";
            html.Text(row.device);
        }
        html << "\n";
    }
    html << "</table></div>\n";
}
