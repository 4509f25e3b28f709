// quorlin metrics: one machine for Prometheus, in its text format 0.0.4.
#include <map>
#include <utility>

#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Findings.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Summary.h"
#include "Tools/quorlin/Text.h"

namespace {

struct Label_t {
    const char* name;
    std::string_view value;
};
using Labels_t = std::vector<Label_t>;

// Appends the text as the inside of a label's quotes. Printable text has no line feed, which would need an escape too.
void AppendEscaped(std::string& out, std::string_view text) {
    for (const char character : Printable(text)) {
        if (character == '\\' || character == '"') out += '\\';
        out += character;
    }
}

// Writes families of gauges. A family without samples isn't written.
class ClGauges {
  public:
    explicit ClGauges(std::string& out) : m_out(out) {}

    void Begin(const char* name, const char* help) {
        m_name = name;
        m_help = help;
        m_hasSamples = false;
    }
    // Writes no sample for a value that isn't known. All samples of a family must have the same labels, with different
    // values.
    void Sample(Known_t value, const Labels_t& labels = {}) {
        if (!value) return;
        if (!std::exchange(m_hasSamples, true)) {
            m_out.append("# HELP ").append(m_name).append(" ").append(m_help);
            m_out.append("\n# TYPE ").append(m_name).append(" gauge\n");
        }
        m_out += m_name;
        char before = '{';
        for (const Label_t& label : labels) {
            m_out.append(1, std::exchange(before, ',')).append(label.name).append("=\"");
            AppendEscaped(m_out, label.value);
            m_out += '"';
        }
        if (!labels.empty()) m_out += '}';
        m_out.append(" ").append(std::to_string(*value)).append("\n");
    }
    // Writes a sample of 1, unless nothing is known of `details`.
    void Info(Labels_t labels, const Labels_t& details) {
        bool isKnown = false;
        for (const Label_t& detail : details) isKnown |= !detail.value.empty();
        labels.insert(labels.end(), details.begin(), details.end());
        if (isKnown) Sample(1, labels);
    }

  private:
    std::string& m_out;
    const char *m_name = nullptr, *m_help = nullptr;
    bool m_hasSamples = false;
};

Labels_t LabelsOf(const Module_t&, const Place_t& slot, std::string_view handle) {
    return {
        {"slot",   slot.name},
        {"bank",   slot.bank},
        {"handle", handle   }
    };
}
Labels_t LabelsOf(const Processor_t&, const Place_t& socket, std::string_view handle) {
    return {
        {"socket", socket.name},
        {"handle", handle     }
    };
}

// Calls `take` with what is in each place, and the place's labels. Firmware may give places the same name and handle,
// so the second one's handle is "1100h-2".
template <class Kind, class Take>
void ForEach(const Places_t& places, const Groups_t<Kind>& groups, Take take) {
    std::map<uint16_t, uint64_t> counts;
    for (const Place_t& place : places) {
        const uint64_t count = ++counts[place.handle];
        if (!place.group) continue;
        std::string handle = HandleText(place.handle);
        if (count > 1) handle.append("-").append(std::to_string(count));
        const Kind& kind = groups[*place.group].kind;
        take(kind, LabelsOf(kind, place, handle));
    }
}

// Writes this number of what is in each place as a family.
template <class Kind>
void WriteNumber(const char* name, const char* help, const Places_t& places, const Groups_t<Kind>& groups,
                 Known_t Kind::*number, uint64_t factor, ClGauges& gauges) {
    gauges.Begin(name, help);
    ForEach(places, groups, [&](const Kind& kind, const Labels_t& labels) {
        const Known_t value = kind.*number;
        gauges.Sample(value ? Known_t(*value * factor) : value, labels);
    });
}

constexpr uint64_t kMillion = 1000000;

void WriteMemory(const Summary_t& summary, ClGauges& gauges) {
    gauges.Begin("quorlin_memory_installed_bytes", "Size of all memory modules.");
    gauges.Sample(summary.memoryInstalled);
    const Places_t& slots = summary.memorySlots;
    if (slots.empty()) return;
    gauges.Begin("quorlin_memory_slots", "Slots for memory modules, with or without one.");
    gauges.Sample(slots.size());
    WriteNumber("quorlin_memory_module_size_bytes", "Size of the module in a slot.", slots, summary.modules,
                &Module_t::size, 1, gauges);
    WriteNumber("quorlin_memory_module_configured_speed_transfers_per_second",
                "Speed at which the module in a slot runs.", slots, summary.modules, &Module_t::configuredSpeed,
                kMillion, gauges);
    gauges.Begin("quorlin_memory_module_info", "The module in a slot.");
    ForEach(slots, summary.modules, [&](const Module_t& module, const Labels_t& labels) {
        const Labels_t details = {
            {"type",         module.type        },
            {"form_factor",  module.formFactor  },
            {"manufacturer", module.manufacturer},
            {"part_number",  module.partNumber  }
        };
        gauges.Info(labels, details);
    });
}

void WriteProcessors(const Summary_t& summary, ClGauges& gauges) {
    const Places_t& sockets = summary.sockets;
    if (sockets.empty()) return;
    gauges.Begin("quorlin_processor_sockets", "Sockets for processors, with or without one.");
    gauges.Sample(sockets.size());
    const auto write = [&](const char* name, const char* help, Known_t Processor_t::*number, uint64_t factor) {
        WriteNumber(name, help, sockets, summary.processors, number, factor, gauges);
    };
    write("quorlin_processor_cores", "Cores of the processor in a socket.", &Processor_t::cores, 1);
    write("quorlin_processor_enabled_cores", "Cores that the firmware enabled.", &Processor_t::coresEnabled, 1);
    write("quorlin_processor_threads", "Threads of the processor in a socket.", &Processor_t::threads, 1);
    write("quorlin_processor_boot_speed_hertz", "Speed at which the processor was started.", &Processor_t::speed,
          kMillion);
    gauges.Begin("quorlin_processor_info", "The processor in a socket.");
    ForEach(sockets, summary.processors, [&](const Processor_t& processor, const Labels_t& labels) {
        const Labels_t details = {
            {"manufacturer", processor.manufacturer},
            {"version",      processor.name        },
            {"family",       processor.family      }
        };
        gauges.Info(labels, details);
    });
}

void WriteFirmware(const Firmware_t& firmware, ClGauges& gauges) {
    gauges.Begin("quorlin_firmware_info", "The firmware.");
    const Labels_t details = {
        {"vendor",       firmware.vendor },
        {"version",      firmware.version},
        {"release",      firmware.release},
        {"release_date", firmware.date   }
    };
    gauges.Info({}, details);
}

void WriteSummary(const Summary_t& summary, ClGauges& gauges) {
    WriteFirmware(summary.firmware, gauges);
    WriteProcessors(summary, gauges);
    WriteMemory(summary, gauges);
}

// Each rule has a sample, as alerts can't tell a sample that isn't there from a machine that isn't.
void WriteFindings(const CheckedTable_t& table, ClGauges& gauges) {
    uint64_t counts[std::size(kRules)] = {};
    CheckTable(table, [&](const Finding_t& finding) { counts[static_cast<size_t>(finding.rule)]++; });
    gauges.Begin("quorlin_findings", "What is wrong with the SMBIOS table, by the rules of quorlin check.");
    for (const RuleId_t id : kRules) {
        const Rule_t rule = RuleOf(id);
        const Labels_t labels = {
            {"rule",     rule.id                    },
            {"severity", SeverityWord(rule.severity)}
        };
        gauges.Sample(counts[static_cast<size_t>(id)], labels);
    }
}

class ClMetrics : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        options.push_back({"--out", "FILE", "The file, which may exist; without it standard output", &m_out});
        return options;
    }

    int Run() override {
        m_source.CheckOne();
        return ForEachTable(m_source, kMetricsCommand.trouble, [&](ClTable& table) {
            table.ClosePackage();
            std::string text;
            ClGauges gauges(text);
            WriteSummary(SummaryOf(table.Bytes(), {.version = table.Version()}), gauges);
            WriteFindings(Checked(table), gauges);
            ClOutput output;
            const bool isDone = m_out == kStandardStream ? (output << text).Finish() : ReplaceFile(m_out, text);
            return isDone ? kExitDone : kMetricsCommand.trouble;
        });
    }

  private:
    Source_t m_source;
    std::string m_out{kStandardStream};
};

}  // namespace

constexpr Command_t kMetricsCommand = {
    .name = "metrics",
    .summary = "the machine's numbers, for Prometheus",
    .description =
        "Writes a machine in the text format of Prometheus: firmware, processors, memory modules by slot, and findings "
        "by rule. Serial numbers aren't written. --out replaces a file as a whole and lets all users read it, as the "
        "textfile collector of node_exporter needs it; if there is no table, the file stays as it was.",
    .footer =
        "Example: quorlin metrics --out /var/lib/prometheus/node-exporter/quorlin.prom\n"
        "Exit codes: 0 done, 1 no table, or the file can't be written, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClMetrics>,
};
