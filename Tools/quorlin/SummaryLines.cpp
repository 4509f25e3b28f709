// The summary as lines for people.
#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Summary.h"

namespace {

// Groups of a section that are shown; more are counted.
constexpr size_t kMostGroups = 6;
constexpr size_t kMostCaches = 12;

std::string Joined(std::initializer_list<std::string> parts, const char* between = ", ") {
    std::string text;
    for (const std::string& part : parts)
        if (!part.empty()) text.append(text.empty() ? "" : between).append(part);
    return text;
}

// "serial number 17", or nothing if the value isn't known.
std::string With(const char* before, const std::string& value, const char* after = "") {
    return value.empty() ? "" : std::string(before).append(value).append(after);
}
std::string With(const char* before, Known_t value, const char* after = "") {
    return With(before, value ? std::to_string(*value) : "", after);
}
std::string SizeOf(Known_t size, const char* after = "") { return size ? SizeText(*size) + after : ""; }
std::string Times(uint64_t count) { return count == 1 ? "" : std::to_string(count) + " x "; }

// The maker and the name, which may begin with the maker.
std::string NameOf(const std::string& maker, const std::string& name) {
    return name.starts_with(maker) ? name : Joined({maker, name}, " ");
}
std::string NameOf(const Product_t& product) { return NameOf(product.manufacturer, product.name); }

using Lines_t = std::vector<std::string>;

// Adds a line for each group. `line` returns an empty text for a group that is better left out.
template <class Kind, class Line>
void AddGroups(const Groups_t<Kind>& groups, Line line, Lines_t& lines) {
    size_t shown = 0;
    uint64_t left = 0;
    for (const Group_t<Kind>& group : groups) {
        const std::string text = line(group);
        if (text.empty()) continue;
        if (shown < kMostGroups)
            lines.push_back(text), shown++;
        else
            left += group.count;
    }
    if (left != 0) lines.push_back("and " + std::to_string(left) + " more");
}

Lines_t SystemLines(const Summary_t& summary) {
    const System_t& system = summary.system;
    return {Joined({NameOf(system.product), With("version ", system.product.version),
                    summary.firmware.isVirtualMachine ? "virtual machine" : ""}),
            Joined({With("serial number ", system.product.serialNumber), With("SKU ", system.skuNumber),
                    With("UUID ", system.uuid)})};
}

Lines_t ChassisLines(const Summary_t& summary) {
    const Product_t& product = summary.chassis.product;
    const Product_t& system = summary.system.product;
    const auto unlike = [](const std::string& text, const std::string& other) { return text == other ? "" : text; };
    return {Joined({summary.chassis.type, unlike(product.manufacturer, system.manufacturer),
                    With("", summary.chassis.height, " U"),
                    With("serial number ", unlike(product.serialNumber, system.serialNumber)),
                    With("asset tag ", product.assetTag)})};
}

Lines_t BoardLines(const Summary_t& summary) {
    const Product_t& board = summary.board;
    return {Joined({NameOf(board), With("version ", board.version), With("serial number ", board.serialNumber)})};
}

Lines_t FirmwareLines(const Summary_t& summary) {
    const Firmware_t& firmware = summary.firmware;
    return {Joined({NameOf(firmware.vendor, firmware.version), firmware.date, firmware.isUefi ? "UEFI" : "",
                    SizeOf(firmware.romSize, " ROM")})};
}

Lines_t ProcessorLines(const Summary_t& summary) {
    const uint64_t count = Sum(summary.processors, &Group_t<Processor_t>::count);
    if (count == 0) return {};
    Lines_t lines;
    if (summary.sockets.size() > 1)
        lines.push_back(
            Joined({std::to_string(count) + " of " + std::to_string(summary.sockets.size()) + " sockets used",
                    With("", Total(summary.processors, &Processor_t::cores), " cores"),
                    With("", Total(summary.processors, &Processor_t::threads), " threads")}));
    const auto line = [](const Group_t<Processor_t>& group) -> std::string {
        const Processor_t& each = group.kind;
        const std::string name = each.name.empty() ? NameOf(each.manufacturer, each.family) : each.name;
        const std::string text = Joined({name, With("", each.cores, each.cores == 1u ? " core" : " cores"),
                                         each.coresEnabled == each.cores ? "" : With("", each.coresEnabled, " enabled"),
                                         With("", each.threads, each.threads == 1u ? " thread" : " threads"),
                                         With("", each.speed ? each.speed : each.maximumSpeed, " MHz")});
        return text.empty() ? text : Times(group.count) + text;
    };
    AddGroups(summary.processors, line, lines);
    return lines;
}

Lines_t CacheLines(const Summary_t& summary) {
    std::string text;
    size_t left = summary.caches.size();
    size_t shown = 0;
    for (uint64_t level = 1; level <= 8; level++)
        for (const Group_t<Cache_t>& group : summary.caches) {
            if (group.kind.level != level || shown == kMostCaches) continue;
            shown++;
            left--;
            const std::string name = With("L", level) + With(" ", group.kind.kind);
            text = Joined({text, Joined({name, Times(group.count) + SizeText(group.kind.size)}, " ")});
        }
    return {left == 0 ? text : text + With(", and ", left, " more")};
}

// Such as "DDR5-5600 at 4800 MT/s".
std::string TypeAndSpeed(const Module_t& module) {
    const Known_t rated = module.speed ? module.speed : module.configuredSpeed;
    const bool isDdr = module.type.find("DDR") != module.type.npos && module.type.find(' ') == module.type.npos;
    std::string text = isDdr ? module.type + With("-", rated) : Joined({module.type, With("", rated, " MT/s")}, " ");
    if (module.configuredSpeed && module.configuredSpeed != rated)
        text += With(" at ", module.configuredSpeed, " MT/s");
    return text;
}

Lines_t MemoryLines(const Summary_t& summary) {
    if (summary.memorySlots.empty() && !summary.memoryMaximum) return {};
    const uint64_t used = Sum(summary.modules, &Group_t<Module_t>::count);
    Lines_t lines = {
        Joined({SizeOf(summary.memoryInstalled, " installed"), SizeOf(summary.memoryMaximum, " maximum"),
                summary.memorySlots.empty()
                    ? ""
                    : std::to_string(used) + " of " + std::to_string(summary.memorySlots.size()) + " slots used",
                summary.errorCorrection})};
    const auto line = [](const Group_t<Module_t>& group) -> std::string {
        const Module_t& each = group.kind;
        const std::string formFactor =
            each.formFactor == "DIMM" || each.type.ends_with(each.formFactor) ? "" : each.formFactor;
        const std::string text =
            Joined({SizeOf(each.size), TypeAndSpeed(each), formFactor, each.manufacturer, each.partNumber}, " ");
        return text.empty() ? text : Times(group.count) + text;
    };
    AddGroups(summary.modules, line, lines);
    return lines;
}

// Such as "PCI Express Gen 3 x8". A slot of a size may have the lanes of another: "PCI Express x16 (x4)".
std::string TypeAndWidth(const Slot_t& slot) {
    const std::string size = slot.type.substr(slot.type.rfind(' ') + 1);
    const bool hasSize = size.size() > 1 && size[0] == 'x' && size[1] >= '0' && size[1] <= '9';
    if (!hasSize) return Joined({slot.type, slot.width}, " ");
    return slot.type + (size == slot.width ? "" : With(" (", slot.width, ")"));
}

Lines_t SlotLines(const Summary_t& summary) {
    if (summary.slots.empty()) return {};
    const auto usage = [](uint64_t used, uint64_t free) {
        return Joined(
            {used == 0 ? "" : std::to_string(used) + " in use", free == 0 ? "" : std::to_string(free) + " free"});
    };
    Lines_t lines = {
        Joined({std::to_string(Sum(summary.slots, &Group_t<Slot_t>::count)) + " in all",
                usage(Sum(summary.slots, &Group_t<Slot_t>::used), Sum(summary.slots, &Group_t<Slot_t>::free))})};
    const auto line = [&](const Group_t<Slot_t>& group) -> std::string {
        const Slot_t& each = group.kind;
        if (each.type.empty()) return "";
        return Times(group.count) + TypeAndWidth(each) + With(": ", usage(group.used, group.free));
    };
    AddGroups(summary.slots, line, lines);
    return lines;
}

}  // namespace

std::vector<SummarySection_t> SectionsOf(const Summary_t& summary) {
    std::vector<SummarySection_t> sections = {
        {"System",     SystemLines(summary)   },
        {"Chassis",    ChassisLines(summary)  },
        {"Board",      BoardLines(summary)    },
        {"Firmware",   FirmwareLines(summary) },
        {"Processors", ProcessorLines(summary)},
        {"Caches",     CacheLines(summary)    },
        {"Memory",     MemoryLines(summary)   },
        {"Slots",      SlotLines(summary)     },
    };
    for (SummarySection_t& section : sections)
        std::erase_if(section.lines, [](const std::string& line) { return line.empty(); });
    return sections;
}
