// quorlin metrics: one machine for Prometheus, in its text format 0.0.4.
#include <algorithm>
#include <functional>
#include <unordered_map>
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

// Writes families of gauges, in large blocks. A family without samples isn't written.
class ClGauges {
  public:
    using Write_t = std::function<void(std::string_view text)>;

    explicit ClGauges(Write_t write) : m_write(std::move(write)) {}

    void Begin(const char* name, const char* help) {
        m_name = name;
        m_help = help;
        m_hasSamples = false;
    }
    // Writes no sample for a value that isn't known. All samples of a family must have the same labels, with different
    // values.
    void Sample(Known_t value, const Labels_t& labels = {}) {
        if (!value) return;
        std::string& out = m_text;
        if (!std::exchange(m_hasSamples, true)) {
            out.append("# HELP ").append(m_name).append(" ").append(m_help);
            out.append("\n# TYPE ").append(m_name).append(" gauge\n");
        }
        out += m_name;
        char before = '{';
        for (const Label_t& label : labels) {
            out.append(1, std::exchange(before, ',')).append(label.name).append("=\"");
            AppendEscaped(out, label.value);
            out += '"';
        }
        if (!labels.empty()) out += '}';
        out.append(" ").append(std::to_string(*value)).append("\n");
        if (out.size() >= kBlock) Flush();
    }
    // Writes what is left.
    void Flush() {
        m_write(m_text);
        m_text.clear();
    }

  private:
    static constexpr size_t kBlock = 64u << 10;

    const Write_t m_write;
    std::string m_text;
    const char *m_name = nullptr, *m_help = nullptr;
    bool m_hasSamples = false;
};

// The value of an info sample; none if nothing is known.
Known_t OneIfKnown(const Labels_t& details) {
    const bool isKnown = std::ranges::any_of(details, [](const Label_t& each) { return !each.value.empty(); });
    return isKnown ? Known_t(1) : std::nullopt;
}

// What a place is called.
struct PlaceTexts_t {
    std::string name, bank, handle;
};

Labels_t LabelsOf(const Module_t&, const PlaceTexts_t& slot) {
    return {
        {"slot",   slot.name  },
        {"bank",   slot.bank  },
        {"handle", slot.handle}
    };
}
Labels_t LabelsOf(const Processor_t&, const PlaceTexts_t& socket) {
    return {
        {"socket", socket.name  },
        {"handle", socket.handle}
    };
}

// Calls `take` with what is in each place, and a function that writes a sample with the place's labels and others.
template <class Kind, class Take>
void ForEach(const Places_t& places, const Groups_t<Kind>& groups, ClGauges& gauges, Take take) {
    std::unordered_map<uint16_t, uint64_t> counts;
    for (const Place_t& place : places) {
        const uint64_t count = ++counts[place.handle];
        if (place.group == Place_t::kEmpty) continue;
        const Kind& kind = groups[place.group].kind;
        take(kind, [&](Known_t value, const Labels_t& details = {}) {
            if (!value) return;
            PlaceTexts_t texts = {WithSingleBlanks(place.name), WithSingleBlanks(place.bank), HandleText(place.handle)};
            // Firmware may give places the same name and handle, so the second one's handle is "1100h-2".
            if (count > 1) texts.handle.append("-").append(std::to_string(count));
            Labels_t labels = LabelsOf(kind, texts);
            labels.insert(labels.end(), details.begin(), details.end());
            gauges.Sample(value, labels);
        });
    }
}

// Writes this number of what is in each place as a family.
template <class Kind>
void WriteNumber(const char* name, const char* help, const Places_t& places, const Groups_t<Kind>& groups,
                 Known_t Kind::*number, uint64_t factor, ClGauges& gauges) {
    gauges.Begin(name, help);
    ForEach(places, groups, gauges, [&](const Kind& kind, auto sample) {
        const Known_t value = kind.*number;
        sample(value ? Known_t(*value * factor) : value);
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
    ForEach(slots, summary.modules, gauges, [](const Module_t& module, auto sample) {
        const Labels_t details = {
            {"type",         module.type        },
            {"form_factor",  module.formFactor  },
            {"manufacturer", module.manufacturer},
            {"part_number",  module.partNumber  }
        };
        sample(OneIfKnown(details), details);
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
    ForEach(sockets, summary.processors, gauges, [](const Processor_t& processor, auto sample) {
        const Labels_t details = {
            {"manufacturer", processor.manufacturer},
            {"version",      processor.name        },
            {"family",       processor.family      }
        };
        sample(OneIfKnown(details), details);
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
    gauges.Sample(OneIfKnown(details), details);
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
            if (m_out != kStandardStream) {
                const bool isDone = ReplaceFile(m_out, [&](const AppendBytes_t& append) {
                    Write(table, [&](std::string_view text) { append(text.data(), text.size()); });
                });
                return isDone ? kExitDone : kMetricsCommand.trouble;
            }
            ClOutput output;
            Write(table, [&](std::string_view text) { output << text; });
            return output.Finish() ? kExitDone : kMetricsCommand.trouble;
        });
    }

  private:
    static void Write(ClTable& table, const ClGauges::Write_t& write) {
        ClGauges gauges(write);
        WriteSummary(SummaryOf(table.Bytes(), {.version = table.Version()}), gauges);
        WriteFindings(Checked(table), gauges);
        gauges.Flush();
    }

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
