// quorlin summary: the machine on one screen.
#include "Tools/quorlin/Summary.h"

#include <utility>

#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"

namespace {

constexpr List_t kNoList = {.name = nullptr, .columns = {}};

// Text for people. A section has a name and lines.

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
    if (summary.sockets > 1)
        lines.push_back(Joined({std::to_string(count) + " of " + std::to_string(summary.sockets) + " sockets used",
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
    if (summary.memorySlots == 0 && !summary.memoryMaximum) return {};
    const uint64_t used = Sum(summary.modules, &Group_t<Module_t>::count);
    Lines_t lines = {Joined({SizeOf(summary.memoryInstalled, " installed"), SizeOf(summary.memoryMaximum, " maximum"),
                             summary.memorySlots == 0
                                 ? ""
                                 : std::to_string(used) + " of " + std::to_string(summary.memorySlots) + " slots used",
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

void ShowToPeople(const Summary_t& summary, ClColumns& people) {
    const std::pair<std::string_view, Lines_t> sections[] = {
        {"System",     SystemLines(summary)   },
        {"Chassis",    ChassisLines(summary)  },
        {"Board",      BoardLines(summary)    },
        {"Firmware",   FirmwareLines(summary) },
        {"Processors", ProcessorLines(summary)},
        {"Caches",     CacheLines(summary)    },
        {"Memory",     MemoryLines(summary)   },
        {"Slots",      SlotLines(summary)     },
    };
    for (const auto& [section, lines] : sections) {
        std::string_view name = section;
        for (const std::string& line : lines) {
            if (line.empty()) continue;
            people.Pair(name, line);
            name = {};
        }
    }
    people.Finish(0);
}

// JSON: null for what isn't known.

using Members_t = Node_t::Members_t;

Node_t Node(const std::string& text) {
    Node_t node;
    if (!text.empty()) node.value = text;
    return node;
}
Node_t Node(Known_t number) {
    Node_t node;
    if (number) node.value = *number;
    return node;
}
Node_t Node(Members_t members) { return {std::move(members)}; }

Members_t MembersOf(const System_t& system) {
    return {
        {"manufacturer",  Node(system.product.manufacturer)},
        {"product_name",  Node(system.product.name)        },
        {"version",       Node(system.product.version)     },
        {"serial_number", Node(system.product.serialNumber)},
        {"uuid",          Node(system.uuid)                },
        {"sku_number",    Node(system.skuNumber)           },
        {"family",        Node(system.family)              },
    };
}

Members_t MembersOf(const Chassis_t& chassis) {
    return {
        {"type",          Node(chassis.type)                },
        {"manufacturer",  Node(chassis.product.manufacturer)},
        {"serial_number", Node(chassis.product.serialNumber)},
        {"asset_tag",     Node(chassis.product.assetTag)    },
        {"height",        Node(chassis.height)              },
    };
}

Members_t MembersOf(const Product_t& board) {
    return {
        {"manufacturer",  Node(board.manufacturer)},
        {"product",       Node(board.name)        },
        {"version",       Node(board.version)     },
        {"serial_number", Node(board.serialNumber)},
        {"asset_tag",     Node(board.assetTag)    },
    };
}

Members_t MembersOf(const Firmware_t& firmware) {
    return {
        {"vendor",             Node(firmware.vendor)      },
        {"version",            Node(firmware.version)     },
        {"release_date",       Node(firmware.date)        },
        {"release",            Node(firmware.release)     },
        {"rom_size",           Node(firmware.romSize)     },
        {"is_uefi",            {firmware.isUefi}          },
        {"is_virtual_machine", {firmware.isVirtualMachine}},
    };
}

Members_t MembersOf(const Group_t<Processor_t>& group) {
    const Processor_t& processor = group.kind;
    return {
        {"count",         Node(group.count)           },
        {"version",       Node(processor.name)        },
        {"manufacturer",  Node(processor.manufacturer)},
        {"family",        Node(processor.family)      },
        {"cores",         Node(processor.cores)       },
        {"cores_enabled", Node(processor.coresEnabled)},
        {"threads",       Node(processor.threads)     },
        {"current_speed", Node(processor.speed)       },
        {"max_speed",     Node(processor.maximumSpeed)},
    };
}

Members_t MembersOf(const Group_t<Cache_t>& group) {
    return {
        {"count", Node(group.count)     },
        {"level", Node(group.kind.level)},
        {"type",  Node(group.kind.kind) },
        {"size",  Node(group.kind.size) },
    };
}

Members_t MembersOf(const Group_t<Module_t>& group) {
    const Module_t& module = group.kind;
    return {
        {"count",            Node(group.count)           },
        {"size",             Node(module.size)           },
        {"type",             Node(module.type)           },
        {"form_factor",      Node(module.formFactor)     },
        {"speed",            Node(module.speed)          },
        {"configured_speed", Node(module.configuredSpeed)},
        {"manufacturer",     Node(module.manufacturer)   },
        {"part_number",      Node(module.partNumber)     },
    };
}

Members_t MembersOf(const Group_t<Slot_t>& group) {
    return {
        {"count", Node(group.count)     },
        {"type",  Node(group.kind.type) },
        {"width", Node(group.kind.width)},
        {"used",  Node(group.used)      },
        {"free",  Node(group.free)      },
    };
}

template <class Kind>
Node_t Node(const Groups_t<Kind>& groups) {
    Node_t::List_t list;
    for (const Group_t<Kind>& group : groups) list.push_back(Node(MembersOf(group)));
    return {std::move(list)};
}

Members_t MembersOf(const Summary_t& summary) {
    const uint64_t modules = Sum(summary.modules, &Group_t<Module_t>::count);
    const uint64_t used = Sum(summary.processors, &Group_t<Processor_t>::count);
    const Known_t cores = Total(summary.processors, &Processor_t::cores);
    const Known_t threads = Total(summary.processors, &Processor_t::threads);
    Members_t processors = {
        {"sockets", Node(summary.sockets)   },
        {"used",    Node(used)              },
        {"cores",   Node(cores)             },
        {"threads", Node(threads)           },
        {"models",  Node(summary.processors)},
    };
    Members_t memory = {
        {"installed",        Node(summary.memoryInstalled)      },
        {"maximum",          Node(summary.memoryMaximum)        },
        {"slots",            Node(summary.memorySlots)          },
        {"used",             Node(modules)                      },
        {"free",             Node(summary.memorySlots - modules)},
        {"error_correction", Node(summary.errorCorrection)      },
        {"modules",          Node(summary.modules)              },
    };
    return {
        {"system",     Node(MembersOf(summary.system))  },
        {"chassis",    Node(MembersOf(summary.chassis)) },
        {"board",      Node(MembersOf(summary.board))   },
        {"firmware",   Node(MembersOf(summary.firmware))},
        {"processors", Node(std::move(processors))      },
        {"caches",     Node(summary.caches)             },
        {"memory",     Node(std::move(memory))          },
        {"slots",      Node(summary.slots)              },
    };
}

class ClSummaryCommand : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForMany();
        options.push_back({"file", "FILE", "Images to read, as --image takes them", &m_source.images});
        options.push_back(m_format.Option());
        return options;
    }

    int Run() override {
        m_source.Check();
        m_format.Check(m_source);
        return WriteTables(m_source, m_format.Chosen(), kNoList, kSummaryCommand.trouble,
                           [](ClTable& table, ClWriter& writer) {
                               const Summary_t summary = SummaryOf(table.Bytes(), {.version = table.Version()});
                               if (ClColumns* people = writer.People(); people != nullptr)
                                   ShowToPeople(summary, *people);
                               else
                                   writer.Members(MembersOf(summary));
                               return kExitDone;
                           });
    }

  private:
    Source_t m_source;
    ClFormatOption m_format{kObjects};
};

}  // namespace

constexpr Command_t kSummaryCommand = {
    .name = "summary",
    .summary = "the machine on one screen",
    .description =
        "Shows what a machine is on one screen: system, board, firmware, processors, caches, memory and slots. What "
        "isn't known, and what the maker never filled in, is left out.",
    .footer =
        "Example: quorlin summary table.bin\n"
        "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClSummaryCommand>,
};
