#include "Packages/Format/TableFile.h"

#include <algorithm>
#include <cstring>

#include "Packages/Format/EntryPoint.h"
#include "Packages/Format/FirmwareAnswer.h"
#include "Packages/Format/Structures.h"

namespace {

struct FormName_t {
    TableForm_t form;
    char name[8];

    constexpr std::string_view Name() const { return name; }
};
constexpr FormName_t kFormNames[] = {
    {TableForm_t::kAny,           "any"    },
    {TableForm_t::kDump,          "dump"   },
    {TableForm_t::kBareTable,     "table"  },
    {TableForm_t::kWindowsAnswer, "windows"},
    {TableForm_t::kFolder,        "sysfs"  },
};

TableFound_t NoTable(std::string problem) { return {.problem = std::move(problem)}; }

// Whether the file begins with an entry point, even if the last letter of its anchor is wrong or missing.
bool SeemsDump(std::span<const uint8_t> bytes) {
    return BeginsWith(bytes, kAnchor32) || BeginsWith(bytes, kAnchor64.substr(0, kAnchor64.size() - 1));
}

// The first `promised` bytes of `atHand`, as far as it has them. If isBound, none count as missing.
TableFound_t Found(TableForm_t form, std::span<const uint8_t> atHand, uint32_t promised, bool isBound) {
    const size_t length = std::min<size_t>(atHand.size(), promised);
    return {.isFound = true,
            .form = form,
            .table = atHand.first(length),
            .missing = isBound ? 0 : static_cast<uint32_t>(promised - length)};
}

constexpr char kAccepted[] =
    "; accepted are a dump that begins with an entry point, a bare table, Windows' answer to a firmware-table call, "
    "any of them compressed with gzip, and a folder of smbios_entry_point and DMI; --as table takes it as one all the "
    "same";

// Returns what the file seems to be, by its first bytes.
std::string_view WhatItSeems(std::span<const uint8_t> bytes) {
    using namespace std::string_view_literals;
    struct Begin_t {
        size_t offset;
        std::string_view bytes, name;
    };
    constexpr Begin_t kBegins[] = {
        {0,
         "\x7F"
         "ELF",                     "a Linux program"                 },
        {0,   "MZ"sv,               "a Windows program"               },
        {0,
         "\xFD"
         "7zXZ"sv,                  "compressed with xz; unpack it"   },
        {0,   "\x28\xB5\x2F\xFD"sv, "compressed with zstd; unpack it" },
        {0,   "BZh"sv,              "compressed with bzip2; unpack it"},
        {0,   "PK\x03\x04"sv,       "a zip archive; unpack it"        },
        {257, "ustar"sv,            "a tar archive; unpack it"        },
        {0,   "%PDF"sv,             "a PDF document"                  },
        {0,   "\x89PNG"sv,          "a picture"                       },
        {0,   "\xFF\xD8\xFF"sv,     "a picture"                       },
    };
    for (const Begin_t& begin : kBegins)
        if (bytes.size() > begin.offset && BeginsWith(bytes.subspan(begin.offset), begin.bytes)) return begin.name;
    const std::span<const uint8_t> head = bytes.first(std::min<size_t>(bytes.size(), 512));
    if (std::ranges::all_of(head, [](uint8_t byte) { return byte == 0; })) return "zeros";
    if (std::ranges::all_of(head, [](uint8_t byte) { return byte >= ' ' || (byte >= '\t' && byte <= '\r'); }))
        return "text";
    return "other data";
}

TableFound_t WithVersion(TableFound_t found, const EntryPoint_t& point) {
    found.major = point.major;
    found.minor = point.minor;
    found.checksumsFit = point.checksumsFit;
    found.structures = point.structures;
    found.largest = point.largest;
    return found;
}

TableFound_t FindAfterEntryPoint(std::span<const uint8_t> bytes) {
    EntryPoint_t point;
    if (!ParseEntryPoint(bytes.data(), bytes.size(), &point))
        return NoTable(SeemsDump(bytes) ? "truncated: the file ends within its entry point; dump it anew"
                                        : "not a dump: it doesn't begin with an entry point; try it without --as");
    // An address within the file, after the entry point, is an offset.
    const bool isOffset = point.tableAddress >= point.size && point.tableAddress < bytes.size();
    const size_t offset = isOffset ? static_cast<size_t>(point.tableAddress) : kTableOffset;
    if (offset >= bytes.size())
        return NoTable("truncated: the file ends before its table; dump it anew, or try the folder it comes from");
    return WithVersion(Found(TableForm_t::kDump, bytes.subspan(offset), point.tableLength, point.lengthIsBound), point);
}

constexpr size_t kAnswerHead = sizeof(FirmwareAnswer_t);

// No structure begins like this: one of type 0 or 1 has a Length above these major versions.
bool BeginsWithAnswer(std::span<const uint8_t> bytes) {
    return bytes.size() > kAnswerHead && bytes[0] <= 1 && bytes[1] >= 2 && bytes[1] < 8 &&
           LooksLikeTable(bytes.subspan(kAnswerHead));
}

TableFound_t FindAfterAnswer(std::span<const uint8_t> bytes) {
    if (bytes.size() <= kAnswerHead)
        return NoTable("truncated: the file ends before its table; save the system's answer anew");
    FirmwareAnswer_t answer;
    std::memcpy(&answer, bytes.data(), sizeof answer);
    TableFound_t found = Found(TableForm_t::kWindowsAnswer, bytes.subspan(kAnswerHead), answer.length, false);
    found.major = answer.major;
    found.minor = answer.minor;
    return found;
}

TableFound_t WholeTable(std::span<const uint8_t> bytes) {
    return {.isFound = true, .form = TableForm_t::kBareTable, .table = bytes};
}

// Sets the byte at `place` so that `size` bytes from `begin` on add up to 0.
void SetChecksum(std::vector<uint8_t>& bytes, size_t begin, size_t size, size_t place) {
    uint8_t sum = 0;
    for (size_t at = begin; at < begin + size; at++) sum = static_cast<uint8_t>(sum + bytes[at]);
    bytes[place] = static_cast<uint8_t>(bytes[place] - sum);
}

template <class Number>
void Put(std::vector<uint8_t>& bytes, size_t place, Number number) {
    std::memcpy(&bytes[place], &number, sizeof number);
}

void PutText(std::vector<uint8_t>& bytes, size_t place, std::string_view text) {
    std::memcpy(&bytes[place], text.data(), text.size());
}

// Numbers that an _SM_ entry point has: of the structures, and of bytes in the largest one.
struct Counts_t {
    uint16_t structures = 0, largest = 0;
};

Counts_t CountStructures(std::span<const uint8_t> table) {
    Counts_t counts;
    for (const TableStructure_t& structure : ClWalk(table)) {
        counts.structures++;
        counts.largest = std::max(counts.largest, static_cast<uint16_t>(std::min(structure.size, 0xFFFFu)));
    }
    return counts;
}

}  // namespace

std::string_view NameOfForm(TableForm_t form) { return std::ranges::find(kFormNames, form, &FormName_t::form)->Name(); }

bool FormByName(std::string_view name, TableForm_t* form) {
    const auto* row = std::ranges::find(kFormNames, name, &FormName_t::Name);
    if (row == std::end(kFormNames)) return false;
    *form = row->form;
    return true;
}

static TableFound_t FindTableOfAnySize(std::span<const uint8_t> bytes, TableForm_t as) {
    if (bytes.empty()) return NoTable("empty; try a file with a dump");
    if (bytes.size() > kMostFileBytes) return NoTable("larger than 4 MiB, so not a table; try the file with the dump");
    switch (as) {
        case TableForm_t::kDump: return FindAfterEntryPoint(bytes);
        case TableForm_t::kBareTable: return WholeTable(bytes);
        case TableForm_t::kWindowsAnswer: return FindAfterAnswer(bytes);
        case TableForm_t::kFolder: return NoTable("a file; --as sysfs takes the folder of an entry point and a table");
        case TableForm_t::kAny: break;
    }
    if (SeemsDump(bytes)) {
        TableFound_t found = FindAfterEntryPoint(bytes);
        if (!found.isFound || !found.table.empty()) return found;
        return NoTable(std::string("not a table: its entry point states a table of no bytes") + kAccepted);
    }
    if (BeginsWithAnswer(bytes)) return FindAfterAnswer(bytes);
    if (LooksLikeTable(bytes)) return WholeTable(bytes);
    return NoTable("not a table: it seems to be " + std::string(WhatItSeems(bytes)) + kAccepted);
}

static TableFound_t Bounded(const TableFound_t& found) {
    if (found.table.size() <= kMostTableBytes) return found;
    return NoTable("its table is larger than 4 MiB, so it isn't one; try the file with the dump");
}

TableFound_t FindTable(std::span<const uint8_t> bytes, TableForm_t as) {
    return Bounded(FindTableOfAnySize(bytes, as));
}

TableFound_t FindTableInFolder(std::span<const uint8_t> entryPoint, std::span<const uint8_t> table) {
    EntryPoint_t point;
    if (!ParseEntryPoint(entryPoint.data(), entryPoint.size(), &point))
        return NoTable("its smbios_entry_point is none; try its file DMI");
    if (table.empty()) return NoTable("its file DMI is empty; try a file with a dump");
    return Bounded(WithVersion(Found(TableForm_t::kFolder, table, point.tableLength, point.lengthIsBound), point));
}

std::vector<uint8_t> MakeDump(std::span<const uint8_t> table, uint8_t major, uint8_t minor, uint32_t missing) {
    std::vector<uint8_t> dump(kTableOffset);
    const uint32_t length = static_cast<uint32_t>(table.size()) + missing;
    if (major >= 3 || length > 0xFFFF) {
        PutText(dump, 0, kAnchor64);
        dump[6] = kEntryPointSize64;
        dump[7] = major;
        dump[8] = minor;
        dump[0x0A] = 1;  // the entry point's revision
        Put(dump, 0x0C, length);
        Put(dump, 0x10, uint64_t{kTableOffset});
        SetChecksum(dump, 0, kEntryPointSize64, 5);
    } else {
        const Counts_t counts = CountStructures(table);
        PutText(dump, 0, kAnchor32);
        dump[5] = kEntryPointSize32;
        dump[6] = major;
        dump[7] = minor;
        Put(dump, 8, counts.largest);
        PutText(dump, kDMIPartOffset, kAnchorDMI);
        Put(dump, 0x16, static_cast<uint16_t>(length));
        Put(dump, 0x18, static_cast<uint32_t>(kTableOffset));
        Put(dump, 0x1C, counts.structures);
        dump[0x1E] = static_cast<uint8_t>(major << 4 | (minor & 15));  // the version in BCD
        SetChecksum(dump, kDMIPartOffset, kEntryPointSize32 - kDMIPartOffset, 0x15);
        SetChecksum(dump, 0, kEntryPointSize32, 4);
    }
    dump.insert(dump.end(), table.begin(), table.end());
    return dump;
}
