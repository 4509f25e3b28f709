// quorlin verify: what the firmware claims, held against what the hardware says.
#include "Packages/Analysis/Verify.h"

#include "Packages/Analysis/Hardware.h"
#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Progress.h"
#include "Tools/quorlin/Recording.h"

namespace {

constexpr Column_t kColumns[] = {{"rule"}, {"verdict"}, {"type"},     {"handle"}, {"key"},      {"offset"},
                                 {"what"}, {"claim"},   {"hardware"}, {"reason"}, {"read_from"}};
constexpr List_t kList = {.name = "verdicts", .columns = kColumns};

void ShowToPeople(const Verification_t& verification, ClColumns& people) {
    const VerifyRow_t row = VerifyRowOf(verification.rule);
    std::string line(row.id);
    line.append(" ").append(VerdictWord(verification.verdict)).append(": ").append(row.claim);
    line.append(": ").append(verification.claim);
    if (verification.structure != nullptr)
        line.append("; handle ").append(HandleText(verification.structure->Handle()));
    people.Line(0, line);
    people.Line(4, std::string(verification.hardware).append(" (").append(row.source).append(")"));
}

void WriteRow(const Verification_t& verification, ClWriter& writer) {
    const VerifyRow_t row = VerifyRowOf(verification.rule);
    Cell_t type, handle, key, offset, hardware, reason;
    if (verification.structure != nullptr) {
        type = uint64_t{verification.structure->Type()};
        handle = uint64_t{verification.structure->Handle()};
        key = verification.key;
        offset = uint64_t{verification.offset};
    }
    (verification.verdict == Verdict_t::kCantTell ? reason : hardware) = verification.hardware;
    writer.Row({row.id, VerdictWord(verification.verdict), type, handle, key, offset, row.claim, verification.claim,
                hardware, reason, row.source});
}

class ClVerifyCommand : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        options.push_back(m_format.Option());
        return options;
    }

    int Run() override {
        // A table of its own may be held against a recorded machine.
        std::string record;
        if (!m_source.images.empty() || m_source.sample) record.swap(m_source.replay);
        m_source.CheckOne();
        if (std::string problem; !record.empty() && ReplayRecord(record, &problem) != kSuccess) {
            SayError(record, problem);
            return kVerifyCommand.trouble;
        }
        return WriteTables(m_source, m_format.Chosen(), kList, kVerifyCommand.trouble,
                           [](ClTable& table, ClWriter& writer) { return Verify(table, writer); });
    }

  private:
    static int Verify(ClTable& table, ClWriter& writer) {
        RecordedHardware_t hardware;
        {
            ClStage stage;
            hardware = ReadHardware({.progress = [&stage](std::string_view what) { stage.Show(what); }});
        }
        const HardwareFacts_t facts =
            HardwareFactsOf(hardware.facts, hardware.processors, hardware.tables, hardware.functions);
        bool contradicts = false;
        ClColumns* people = writer.People();
        VerifyTable(table.Bytes(), table.Version(), facts, [&](const Verification_t& verification) {
            contradicts |= verification.verdict == Verdict_t::kContradicts;
            people != nullptr ? ShowToPeople(verification, *people) : WriteRow(verification, writer);
        });
        return contradicts ? kExitNo : kExitDone;
    }

    Source_t m_source;
    ClFormatOption m_format{kTableRows};
};

}  // namespace

constexpr Command_t kVerifyCommand = {
    .name = "verify",
    .summary = "whether the firmware tells the truth about the hardware",
    .description =
        "Holds what the table claims against what the hardware says: processors, caches, memory, slots, devices, TPM, "
        "management controller. Only sources that don't come from the table count. With --image, that table is held "
        "against this machine, or against the recorded one. The hardware is only read.",
    .footer =
        "Example: quorlin verify --replay machine\n"
        "Exit codes: 0 nothing contradicts, 1 something does, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClVerifyCommand>,
};
