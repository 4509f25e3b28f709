// quorlin record: a machine into a new folder.
#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/Format/TextLines.h"
#include "Packages/OS/Hmac.h"
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Key.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Progress.h"
#include "Tools/quorlin/Recording.h"
#include "Tools/quorlin/Table.h"

namespace {

std::span<const uint8_t> BytesOf(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

class ClRecord : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        std::erase_if(options, [](const Option_t& option) {
            const std::string_view name = option.name;
            return name != "--replay" && name != "--driver" && name != "--no-driver" && name != "--method" &&
                   name != "--trace" && name != "--verbose";
        });
        options.push_back({"dir", "DIR", "The new folder", &m_folder, true});
        m_redaction.AddOptions("Leave out or replace what tells the machine from others", options);
        options.push_back(
            {"--with-licence-keys", nullptr, "Record the ACPI tables MSDM and SLIC too", &m_recording.withLicenceKeys});
        return options;
    }

    int Run() override {
        m_redaction.Check();
        m_source.CheckOne();
        if (IsThere(m_folder)) return Refuse(EEXIST);
        std::vector<uint8_t> key;
        if (m_redaction.isWanted && !MakeKey(m_redaction.keyFile, &key)) return kExitNoTable;
        if (!ReadTable()) return kExitNoTable;
        RecordedHardware_t record;
        {
            ClStage stage;
            m_recording.progress = [&stage](std::string_view what) { stage.Show(what); };
            record = ReadHardware(m_recording);
        }
        if (!m_tableProblem.empty())
            record.facts.unread.insert(record.facts.unread.begin(), {"SMBIOS table", m_tableProblem});
        if (m_redaction.isWanted &&
            !RedactHardware(m_table, {.version = m_version, .keepsVendor = m_redaction.keepsVendor}, key, record))
            return kExitNoTable;
        return Write(record);
    }

  private:
    int Refuse(int problem) const {
        SayNotMade(m_folder, problem);
        return kExitNoTable;
    }

    // A machine without a table is recorded too. False, with a line on standard error, if there is no machine.
    bool ReadTable() {
        ClTable table;
        if (table.Open(m_source, nullptr)) {
            const std::span<const uint8_t> bytes = table.Bytes();
            m_table.assign(bytes.begin(), bytes.end());
            m_version = table.Version();
        }
        if (!m_table.empty() && m_table.size() <= kMostTableBytes) return true;
        m_table.clear();
        if (!m_source.replay.empty() && ReplayedRecord() == nullptr) {
            SayError(table.Name(), table.Error());
            return false;
        }
        m_tableProblem = table.Error().substr(0, table.Error().find(';'));
        if (m_tableProblem.empty()) m_tableProblem = "it is empty or larger than 4 MiB";
        return true;
    }

    int Write(RecordedHardware_t& record) {
        MachineFacts_t& facts = record.facts;
        const std::vector<uint8_t> dump = m_table.empty() ? std::vector<uint8_t>()
                                                          : MakeDump(m_table, static_cast<uint8_t>(m_version >> 8),
                                                                     static_cast<uint8_t>(m_version & 0xFF));
        if (!dump.empty()) facts.files.push_back({kRecordFiles[kTableRecord], {}});
        std::ranges::sort(facts.files, {}, [](const RecordedFile_t& file) { return RecordFileByName(file.name); });
        const std::string texts[] = {{},
                                     WriteAcpiDat(record.tables),
                                     WritePciDump(record.functions),
                                     WriteCpuidDump(record.processors),
                                     WriteMsrDump(record.registers)};
        ClNewFolder folder(m_folder);
        for (RecordedFile_t& file : facts.files) {
            const RecordFile_t number = RecordFileByName(file.name);
            const std::span<const uint8_t> bytes = number == kTableRecord ? std::span(dump) : BytesOf(texts[number]);
            std::array<uint8_t, 32> hash;
            if (!os_Sha256(bytes, hash)) {
                SayError("record", "the system has no SHA-256");
                return kExitNoTable;
            }
            for (const uint8_t byte : hash) AppendHex(file.sha256, byte, 2);
            folder.Append(folder.AddFile(file.name), bytes);
        }
        const std::string machine = WriteMachineJson(facts);
        folder.Append(folder.AddFile(kMachineJson), BytesOf(machine));
        if (!folder.Finish()) return Refuse(folder.Problem());
        if (!facts.unread.empty()) {
            // Single tables are left out for other reasons.
            const bool lacksAccess =
                m_source.replay.empty() && std::ranges::any_of(facts.unread, [](const Unread_t& unread) {
                    return !unread.what.starts_with("ACPI table ");
                });
            SayError(m_folder, std::string("something wasn't recorded; machine.json tells what and why") +
                                   (lacksAccess ? ", and quorlin doctor more" : ""));
        }
        return kExitDone;
    }

    Source_t m_source;
    std::string m_folder, m_tableProblem;
    RedactChoice_t m_redaction;
    RecordingOptions_t m_recording;
    std::vector<uint8_t> m_table;
    uint16_t m_version = 0;
};

}  // namespace

constexpr Command_t kRecordCommand = {
    .name = "record",
    .summary = "writes a machine into a new folder",
    .description =
        "Writes a machine into a new folder: its SMBIOS table, ACPI tables, PCI configuration spaces, CPUID and some "
        "registers, in forms that other tools read. With --replay DIR every command answers from it. The hardware is "
        "only read. Only the folder's owner can read it, as it contains serial numbers.",
    .footer =
        "Example: quorlin record machine, and elsewhere quorlin --replay machine\n"
        "Exit codes: 0 done, 1 no machine, no key, or the folder can't be written, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClRecord>,
};
