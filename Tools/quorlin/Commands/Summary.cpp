// quorlin summary: the machine on one screen.
#include "Tools/quorlin/Summary.h"

#include <algorithm>
#include <utility>

#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"

namespace {

constexpr List_t kNoList = {.name = nullptr, .columns = {}};

void ShowToPeople(const Summary_t& summary, ClColumns& people) {
    const std::vector<SummarySection_t> sections = SectionsOf(summary);
    for (const SummarySection_t& section : sections) {
        std::string_view name = section.name;
        for (const std::string& line : section.lines) {
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

// The groups of a list that are shown. No machine has as many, but a broken table may have hundreds of thousands.
constexpr size_t kMostGroups = 1000;

template <class Kind>
Node_t Node(const Groups_t<Kind>& groups) {
    Node_t::List_t list;
    for (size_t i = 0; i < std::min(groups.size(), kMostGroups); i++) list.push_back(Node(MembersOf(groups[i])));
    return {std::move(list)};
}

// How many groups the lists don't show; no members if they show all.
Members_t LeftOut(const Summary_t& summary) {
    const auto left = [](size_t size) { return size - std::min(size, kMostGroups); };
    const size_t models = left(summary.processors.size()), caches = left(summary.caches.size());
    const size_t modules = left(summary.modules.size()), slots = left(summary.slots.size());
    if (models + caches + modules + slots == 0) return {};
    return {
        {"models",  Node(models) },
        {"caches",  Node(caches) },
        {"modules", Node(modules)},
        {"slots",   Node(slots)  },
    };
}

Members_t MembersOf(const Summary_t& summary) {
    const uint64_t modules = Sum(summary.modules, &Group_t<Module_t>::count);
    const uint64_t used = Sum(summary.processors, &Group_t<Processor_t>::count);
    const Known_t cores = Total(summary.processors, &Processor_t::cores);
    const Known_t threads = Total(summary.processors, &Processor_t::threads);
    Members_t processors = {
        {"sockets", Node(summary.sockets.size())},
        {"used",    Node(used)                  },
        {"cores",   Node(cores)                 },
        {"threads", Node(threads)               },
        {"models",  Node(summary.processors)    },
    };
    Members_t memory = {
        {"installed",        Node(summary.memoryInstalled)             },
        {"maximum",          Node(summary.memoryMaximum)               },
        {"slots",            Node(summary.memorySlots.size())          },
        {"used",             Node(modules)                             },
        {"free",             Node(summary.memorySlots.size() - modules)},
        {"error_correction", Node(summary.errorCorrection)             },
        {"modules",          Node(summary.modules)                     },
    };
    Members_t members = {
        {"system",     Node(MembersOf(summary.system))  },
        {"chassis",    Node(MembersOf(summary.chassis)) },
        {"board",      Node(MembersOf(summary.board))   },
        {"firmware",   Node(MembersOf(summary.firmware))},
        {"processors", Node(std::move(processors))      },
        {"caches",     Node(summary.caches)             },
        {"memory",     Node(std::move(memory))          },
        {"slots",      Node(summary.slots)              },
    };
    if (Members_t leftOut = LeftOut(summary); !leftOut.empty())
        members.push_back({"left_out", Node(std::move(leftOut))});
    return members;
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
                               table.CloseLargePackage();
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
