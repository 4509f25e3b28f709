// quorlin report: a machine as a page.
#include "Tools/quorlin/Report/Page.h"

#include <optional>

#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Findings.h"
#include "Tools/quorlin/Key.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Progress.h"
#include "Tools/quorlin/Recording.h"
#include "Tools/quorlin/Report/Texts.h"
#include "Tools/quorlin/Table.h"

namespace {

class ClReport : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        options.push_back({"out", "FILE", "The new file; - for standard output", &m_out, true});
        options.push_back({"image", "FILE", "An image to read, as --image takes it; two show what differs between them",
                           &m_source.images});
        m_redaction.AddOptions("Replace what tells the machine from others", options);
        return options;
    }

    int Run() override {
        m_redaction.Check();
        if (m_source.images.size() > 2) throw BadUsage_t{"give one image, or two to compare"};
        m_source.Check();
        if (m_redaction.isWanted && !MakeKey(m_redaction.keyFile, &m_key)) return kReportCommand.trouble;
        const bool isComparison = m_source.images.size() == 2;
        if (isComparison) {
            Source_t first = m_source;
            first.images.pop_back();
            m_source.images.erase(m_source.images.begin());
            const int exitCode = ForEachTable(first, kReportCommand.trouble, [&](ClTable& table) {
                table.ClosePackage();
                return Keep(table, m_base) ? kExitDone : kReportCommand.trouble;
            });
            if (exitCode != kExitDone) return exitCode;
        }
        return ForEachTable(m_source, kReportCommand.trouble,
                            [&](ClTable& table) { return Write(table, isComparison); });
    }

  private:
    // A table with bytes of its own.
    struct Kept_t {
        std::vector<uint8_t> bytes;
        NamedTable_t table;
    };

    // Copies a table, redacted if the user wants that.
    bool Keep(ClTable& table, Kept_t& kept) {
        const std::span<const uint8_t> bytes = table.Bytes();
        kept.bytes.assign(bytes.begin(), bytes.end());
        kept.table = {kept.bytes, table.Version(), NameOf(table)};
        if (!m_redaction.isWanted) return true;
        const RedactOptions_t options = {.version = table.Version(), .keepsVendor = m_redaction.keepsVendor};
        if (m_hardware) return RedactHardware(kept.bytes, options, m_key, *m_hardware);
        const bool isDone = RedactTable(kept.bytes, options, HmacUnder(m_key));
        if (!isDone) SayError("redact", kNoHmac);
        return isDone;
    }

    // The file's name without its folders, which may name people.
    std::string NameOf(const ClTable& table) const {
        if (!m_source.replay.empty()) return std::string(TextOf(kTextRecord));
        if (table.Image() == nullptr) return table.Name();
        if (m_redaction.isWanted) return std::string(TextOf(kTextRedactedImage));
        const std::string& path = table.Name();
        return path.substr(path.find_last_of("/\\") + 1);
    }

    int Write(ClTable& table, bool isComparison) {
        if (table.IsThisMachine()) {
            ClStage stage;
            m_hardware = ReadHardware({.progress = [&stage](std::string_view what) { stage.Show(what); }});
        }
        Kept_t kept;
        if (!Keep(table, kept)) return kReportCommand.trouble;
        Report_t report = {.table = kept.table, .checked = Checked(table), .isRedacted = m_redaction.isWanted};
        report.checked.bytes = kept.bytes;
        table.CloseLargePackage();
        if (m_hardware) report.hardware = &*m_hardware;
        if (isComparison) report.base = &m_base.table;
        const std::string page = MakeReport(report);
        const std::span<const uint8_t> bytes(reinterpret_cast<const uint8_t*>(page.data()), page.size());
        return WriteFileOrStream(m_out, bytes) ? kExitDone : kReportCommand.trouble;
    }

    Source_t m_source;
    std::string m_out;
    RedactChoice_t m_redaction;
    std::vector<uint8_t> m_key;
    std::optional<RecordedHardware_t> m_hardware;  // of a machine's own table
    Kept_t m_base;
};

}  // namespace

constexpr Command_t kReportCommand = {
    .name = "report",
    .summary = "a machine as a page for a browser",
    .description =
        "Writes one HTML file that shows a machine: a summary, maps of memory, slots and processors, findings, all "
        "structures with their facts, and the bytes. It needs no network and no script, and can be mailed. Of two "
        "images it shows first what differs. Only its owner can read the file, as tables contain serial numbers; "
        "--redact replaces them. An existing file is never overwritten.",
    .footer =
        "Example: quorlin report machine.html --redact\n"
        "Exit codes: 0 done, 1 no table, no key, or the file can't be written, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClReport>,
};
