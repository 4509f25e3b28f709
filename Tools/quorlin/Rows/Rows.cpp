#include "Tools/quorlin/Rows/Rows.h"

#include <array>
#include <cerrno>

#include "Packages/Format/TextLines.h"
#include "Packages/OS/Hmac.h"
#include "Tools/quorlin/Findings.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Rows/Facts.h"
#include "Tools/quorlin/Rows/Row.h"
#include "Tools/quorlin/Summary.h"

namespace {

// Ends the run early, and no folder is made.
struct Stop_t {
    const char* why;  // null if the folder can't be written
};

std::array<uint8_t, 32> HashOf(std::span<const uint8_t> bytes) {
    std::array<uint8_t, 32> hash;
    if (!os_Sha256(bytes, hash)) throw Stop_t{"the system has no SHA-256"};
    return hash;
}

// The first 63 bits of the name's hash: the same in each run, and never negative.
std::string RecordOf(std::string_view name) {
    const std::array<uint8_t, 32> hash = HashOf({reinterpret_cast<const uint8_t*>(name.data()), name.size()});
    uint64_t record = 0;
    for (size_t place = 0; place < sizeof record; place++) record = record << 8 | hash[place];
    return std::to_string(record >> 1);
}

std::string DigitsOf(std::span<const uint8_t> hash) {
    std::string digits;
    for (const uint8_t byte : hash) AppendHex(digits, byte, 2);
    return digits;
}

class ClMachineRow : public ClRow {
  public:
    using ClRow::ClRow;
    void Record(std::string_view record) { Next() += record; }
    void State(std::optional<FactState_t> state) { Known(state ? StateName(*state) : std::string_view()); }
};

class ClRowWriter {
  public:
    explicit ClRowWriter(const std::string& folder) : m_files(folder) {}

    void Write(ClTable& table) {
        if (m_files.Problem() != 0) throw Stop_t{nullptr};
        table.CloseLargePackage();
        m_record = RecordOf(table.Name());
        const CheckedTable_t checked = Checked(table);
        uint32_t counts[std::size(kRules)] = {};
        const ReportFinding_t report = [&](const Finding_t& finding) {
            // Of each rule not more than check shows.
            if (counts[static_cast<size_t>(finding.rule)]++ < kMostPlaces) WriteFinding(finding);
        };
        ClTableCheck check(checked, report);
        uint32_t structures = 0, instances[256] = {};
        for (const TableStructure_t& structure : ClWalk(checked.bytes)) {
            structures++;
            m_facts.Write(m_record, structure, ++instances[structure.Type()], check);
        }
        check.Finish();
        WriteMachine(table, structures, check.Options());
    }

    void Reject(const ClTable& table) {
        if (m_files.Problem() != 0) throw Stop_t{nullptr};
        ClRow row(m_files.Row(kRejects));
        row.Text(table.Name());
        row.Text(table.Error());
        m_files.EndRow(kRejects);
        m_rejects++;
    }

    uint64_t Rejects() const { return m_rejects; }
    bool Finish() { return m_files.Finish(); }
    int Problem() const { return m_files.Problem(); }

  private:
    void WriteFinding(const Finding_t& finding) {
        const Rule_t rule = RuleOf(finding.rule);
        if (rule.severity == Severity_t::kNote) return;
        m_message.clear();
        if (!finding.key.empty()) m_message.append(finding.key).append(": ");
        m_message += rule.what;
        if (!finding.found.empty()) m_message.append(": ").append(finding.found);
        if (!finding.expected.empty()) m_message.append("; expected ").append(finding.expected);
        ClRow row(m_files.Row(kFindings));
        row.Next() += m_record;
        row.Text(rule.id);
        row.Text(SeverityWord(rule.severity));
        if (finding.structure != nullptr) {
            row.Number(finding.structure->Handle());
            row.Number(unsigned{finding.structure->Type()});
        } else {
            row.Nulls(2);
        }
        row.Text(m_message);
        m_files.EndRow(kFindings);
    }

    void WriteMachine(ClTable& table, uint32_t structures, const FactOptions_t& options) {
        const std::span<const uint8_t> bytes = table.Bytes();
        const Summary_t summary = SummaryOf(bytes, options);
        ClMachineRow row(m_files.Row(kMachines));
#define COLUMN(name, type, value) row.value;
#include "Tools/quorlin/Rows/Machines.inc"
#undef COLUMN
        m_files.EndRow(kMachines);
    }

    ClRowFiles m_files;
    ClFactRows m_facts{m_files};
    std::string m_record, m_message;
    uint64_t m_rejects = 0;
};

}  // namespace

int WriteRows(const Source_t& source, const std::string& folder) {
    ClRowWriter writer(folder);
    if (const int problem = IsThere(folder) ? EEXIST : writer.Problem(); problem != 0) {
        SayNotMade(folder, problem);
        return kExitNoTable;
    }
    int exitCode = kExitNoTable;
    bool isComplete = true;
    try {
        exitCode = ForEachTable(
            source, kExitNoTable,
            [&](ClTable& table) {
                writer.Write(table);
                return kExitDone;
            },
            [&](const ClTable& table) { writer.Reject(table); }, &isComplete);
    } catch (const Stop_t& stop) {
        if (stop.why != nullptr) SayError("rows", stop.why);
        isComplete = stop.why == nullptr;
    }
    if (!isComplete) return kExitNoTable;
    if (!writer.Finish()) {
        SayNotMade(folder, writer.Problem());
        return kExitNoTable;
    }
    if (writer.Rejects() != 0)
        SayError(folder, std::to_string(writer.Rejects()) + " of the tables can't be read; rejects.csv tells why");
    return exitCode;
}
