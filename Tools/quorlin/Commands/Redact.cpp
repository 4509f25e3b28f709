// quorlin redact: a table without what tells its machine from others.
#include "Packages/Analysis/Redact.h"

#include <algorithm>

#include "Packages/Format/EntryPoint.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Key.h"
#include "Tools/quorlin/Text.h"

namespace {

constexpr Column_t kColumns[] = {
    {"type",  "Type"    },
    {"title", "Title"   },
    {"key",   "Key"     },
    {"what",  "Replaced"},
};
constexpr List_t kList = {.name = "redacted", .columns = kColumns};

// What is replaced besides facts.
constexpr const char kEverywhere[][96] = {
    "values of 6 or more characters from above, in the whole table, as text, UTF-16 and bytes",
    "MAC addresses and UUIDs in any text, but not in type 45",
    "bytes and strings of unknown types, and of types 126 and 127, without --keep-vendor",
};

class ClRedact : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        std::erase_if(options, [](const Option_t& option) {
            const std::string_view name = option.name;
            return name != "--as" && name != "--smbios-version" && name != "--color" && name != "--verbose";
        });
        options.push_back({"in", "FILE", "The table: a dump, a bare table, or a folder of both", &m_in});
        options.push_back({"out", "FILE", "The new file; - for standard output", &m_out});
        options.push_back(KeyOption(&m_keyFile));
        options.push_back(
            {"--keep-vendor", nullptr, "Leave structures of unknown types, but for known values", &m_keepsVendor});
        options.push_back({"--list", nullptr, "List what is replaced", &m_isList});
        options.push_back(m_format.Option());
        return options;
    }

    int Run() override {
        if (m_isList != m_in.empty() || m_isList != m_out.empty())
            throw BadUsage_t{"name a table and a new file, or give --list"};
        if (m_isList) return List();
        if (m_format.IsGiven()) throw BadUsage_t{"--format is for --list"};
        m_source.images = {m_in};
        m_source.CheckOne();
        std::vector<uint8_t> key;
        if (!MakeKey(m_keyFile, &key)) return kRedactCommand.trouble;
        return ForEachTable(m_source, kRedactCommand.trouble, [&](ClTable& table) { return Redact(table, key); });
    }

  private:
    int Redact(ClTable& table, const std::vector<uint8_t>& key) const {
        const std::span<const uint8_t> bytes = table.Bytes();
        std::vector<uint8_t> redacted(bytes.begin(), bytes.end());
        if (!RedactTable(redacted, {.version = table.Version(), .keepsVendor = m_keepsVendor}, HmacUnder(key))) {
            SayError("redact", kNoHmac);
            return kRedactCommand.trouble;
        }
        return WriteFileOrStream(m_out, DumpOf(table, redacted)) ? kExitDone : kRedactCommand.trouble;
    }

    // A dump keeps its own entry point, so that check says the same of it.
    static std::vector<uint8_t> DumpOf(ClTable& table, std::span<const uint8_t> redacted) {
        const Image_t& image = *table.Image();
        EntryPoint_t point;
        if (image.form != TableForm_t::kDump || !ParseEntryPoint(image.bytes.data(), image.bytes.size(), &point))
            return MakeDump(redacted, table.Major(), table.Minor(), image.missing);
        std::vector<uint8_t> dump(image.bytes.begin(), image.bytes.begin() + static_cast<ptrdiff_t>(point.size));
        dump.resize(static_cast<size_t>(image.source.table - image.bytes.data()));
        dump.insert(dump.end(), redacted.begin(), redacted.end());
        return dump;
    }

    int List() {
        if (!m_source.color.empty()) SetColor(m_source.color);
        ClOutput output;
        const std::unique_ptr<ClWriter> writer = m_format.Chosen().make(output, false);
        writer->Begin(kList, {});
        for (const RedactedFact_t& fact : RedactedFacts())
            writer->Row({fact.type, FindStandardType(fact.type).Name(), fact.key, WhatIsReplaced(fact.how)});
        for (const char* what : kEverywhere) writer->Row({{}, {}, {}, what});
        writer->End();
        return output.Finish() ? kExitDone : kRedactCommand.trouble;
    }

    Source_t m_source;
    std::string m_in, m_out, m_keyFile;
    bool m_keepsVendor = false, m_isList = false;
    ClFormatOption m_format{kTableRows};
};

}  // namespace

constexpr Command_t kRedactCommand = {
    .name = "redact",
    .summary = "a table without what tells its machine from others",
    .description =
        "Writes a table into a new file, with other serial numbers, asset tags, UUIDs and MAC addresses, and other "
        "bytes in structures of unknown types. Under one key equal values stay equal, so that tables can be compared; "
        "without the key nothing comes back.",
    .footer =
        "Example: quorlin redact machine.bin public.bin --key key.bin\n"
        "Exit codes: 0 done, 1 no table, no key, or the file can't be written, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClRedact>,
};
