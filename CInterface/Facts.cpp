// Facts for the C interface: a copy of a table, and walks over its structures.
#include <cstddef>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

#include "CInterface/FactTable.h"
#include "CInterface/Opening.h"
#include "Packages/OS/OS.h"
#include "Packages/Standard/Facts.h"

struct quorlin_fact_walk {
    const quorlin_fact_table* table;
    FactOptions_t options;
    ClFacts facts;
};

namespace {

constexpr bool Is(uint32_t number, auto value) { return number == static_cast<uint32_t>(value); }
static_assert(Is(QUORLIN_NUMBER, FactKind_t::kNumber) && Is(QUORLIN_TEXT, FactKind_t::kText) &&
              Is(QUORLIN_CODE, FactKind_t::kCode) && Is(QUORLIN_BITS, FactKind_t::kBits) &&
              Is(QUORLIN_HANDLE, FactKind_t::kHandle) && Is(QUORLIN_UUID, FactKind_t::kUuid) &&
              Is(QUORLIN_DATE, FactKind_t::kDate) && Is(QUORLIN_RELEASE, FactKind_t::kVersion) &&
              Is(QUORLIN_BYTES, FactKind_t::kBytes) && Is(QUORLIN_LIST, FactKind_t::kList));
static_assert(Is(QUORLIN_IS_VALUE, FactState_t::kValue) && Is(QUORLIN_IS_UNKNOWN, FactState_t::kUnknown) &&
              Is(QUORLIN_IS_NONE, FactState_t::kNone) && Is(QUORLIN_IS_ABSENT, FactState_t::kAbsent) &&
              Is(QUORLIN_IS_RESERVED, FactState_t::kReserved) && Is(QUORLIN_IS_FILLER, FactState_t::kFiller) &&
              Is(QUORLIN_IS_BROKEN, FactState_t::kBroken));

// Lists the structures of a table whose bytes are there, and hands it out.
quorlin_status Finish(std::unique_ptr<quorlin_fact_table> table, quorlin_fact_table** out) {
    const std::span<const uint8_t> bytes = BytesOf(*table);
    uint32_t counts[256] = {};
    for (const TableStructure_t& structure : ClWalk(bytes)) {
        const uint8_t type = structure.Type();
        table->structures.push_back({
            .name = FindStandardType(type).Name().data(),
            .bytes = structure.data,
            .size = structure.size,
            .offset = static_cast<uint32_t>(structure.data - bytes.data()),
            .index = static_cast<uint32_t>(table->structures.size()),
            .instance = ++counts[type],
            .handle = structure.Handle(),
            .type = type,
            .length = structure.Length(),
            .is_whole = structure.IsWhole(),
        });
    }
    table->handles.emplace(bytes);
    const bool hasEnd = !table->structures.empty() && table->structures.back().type == kEndOfTable;
    if (!hasEnd) AddRemark(&table->remark, "no End-of-Table structure ends it");
    *out = table.release();
    return QUORLIN_OK;
}

quorlin_status FinishImage(quorlin_status status, std::unique_ptr<quorlin_fact_table> table, quorlin_fact_table** out) {
    if (status != QUORLIN_OK) return status;
    const Image_t& image = table->image;
    table->form = image.FormText();
    AddRemark(&table->remark, image.Remark());
    if (!image.checksumsFit) AddRemark(&table->remark, "the entry point's checksums don't fit");
    return Finish(std::move(table), out);
}

// Copies the table of the machine that `choose` selects.
template <class Choose>
quorlin_status CopyMachine(quorlin_fact_table& table, const Choose& choose) {
    ClPackageInUse package;
    if (package.IsBusy()) return QUORLIN_BUSY;
    choose();
    if (package->BringUp() != kSuccess) return QUORLIN_NO_TABLE;
    ImageSource_t& source = table.image.source;
    GetSMBIOSVersion(&source.major, &source.minor);
    uint8_t entry[kEntryBufferSize] = {};
    SMBIOSTableImage_t* dump = nullptr;
    if (GetSMBIOSDump(entry, &dump) != kSuccess) return QUORLIN_NO_TABLE;
    const std::unique_ptr<SMBIOSTableImage_t, decltype(&os_FreeBlock)> owner(dump, os_FreeBlock);
    table.image.bytes.assign(dump->Data(), dump->Data() + dump->Length);
    source.table = table.image.bytes.data();
    source.length = dump->Length;
    return QUORLIN_OK;
}

// C sees the walk's own fact, so that nothing is copied: a std::string_view is a size and a pointer.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"  // its head is a base class
#define SAME_PLACE(member, cMember) (offsetof(Fact_t, member) == offsetof(quorlin_fact, cMember))
static_assert(SAME_PLACE(kind, kind) && SAME_PLACE(unit, unit) && SAME_PLACE(offset, offset) &&
              SAME_PLACE(size, size) && SAME_PLACE(state, state) && SAME_PLACE(isSigned, is_signed) &&
              SAME_PLACE(isReference, is_reference) && SAME_PLACE(isDerived, is_derived) &&
              SAME_PLACE(record, record) && SAME_PLACE(field, reserved) && SAME_PLACE(keySize, key_size) &&
              SAME_PLACE(nameSize, name_size) && SAME_PLACE(key, key) && SAME_PLACE(name, name) &&
              SAME_PLACE(number, number) && SAME_PLACE(text, text_size) && SAME_PLACE(string, string_size));
#pragma GCC diagnostic pop
static_assert(sizeof(Fact_t) == sizeof(quorlin_fact) && std::is_trivially_copyable_v<Fact_t>);
static_assert(sizeof(std::string_view) == sizeof(size_t) + sizeof(const char*));

const quorlin_structure* StructureAt(const quorlin_fact_table* table, uint32_t index) {
    return table != nullptr && index < table->structures.size() ? &table->structures[index] : nullptr;
}

// Returns the fact at which a walk is; null before the first and after the last one.
const Fact_t* FactOf(const quorlin_fact_walk* walk) { return walk != nullptr ? walk->facts.Fact() : nullptr; }

}  // namespace

quorlin_status quorlin_facts_open_machine(const quorlin_options* options, quorlin_fact_table** table) {
    return Opening(table != nullptr, options, [&](const quorlin_options& wanted) {
        auto made = std::make_unique<quorlin_fact_table>();
        made->form = "this machine";
        const quorlin_status status =
            OpenMachine(wanted, [&](const auto& choose) { return CopyMachine(*made, choose); });
        return status == QUORLIN_OK ? Finish(std::move(made), table) : status;
    });
}

quorlin_status quorlin_facts_open_file(const char* path, const quorlin_options* options, quorlin_fact_table** table) {
    return Opening(path != nullptr && table != nullptr, options, [&](const quorlin_options& wanted) {
        auto made = std::make_unique<quorlin_fact_table>();
        const quorlin_status status = ReadFileImage(path, wanted, &made->image);
        return FinishImage(status, std::move(made), table);
    });
}

quorlin_status quorlin_facts_open_memory(const void* bytes, size_t size, const quorlin_options* options,
                                         quorlin_fact_table** table) {
    return Opening(bytes != nullptr && table != nullptr, options, [&](const quorlin_options& wanted) {
        auto made = std::make_unique<quorlin_fact_table>();
        const quorlin_status status = ReadMemoryImage(bytes, size, wanted, &made->image);
        return FinishImage(status, std::move(made), table);
    });
}

void quorlin_facts_close(quorlin_fact_table* table) { delete table; }

quorlin_status quorlin_facts_version(const quorlin_fact_table* table, uint8_t* major, uint8_t* minor) {
    if (table == nullptr) return QUORLIN_NULL_POINTER;
    if (major != nullptr) *major = table->image.source.major;
    if (minor != nullptr) *minor = table->image.source.minor;
    return QUORLIN_OK;
}

const char* quorlin_facts_form(const quorlin_fact_table* table) {
    return table == nullptr ? nullptr : table->form.c_str();
}

const char* quorlin_facts_remark(const quorlin_fact_table* table) {
    return table == nullptr ? nullptr : table->remark.c_str();
}

const uint8_t* quorlin_facts_bytes(const quorlin_fact_table* table, size_t* size) {
    if (table == nullptr) return nullptr;
    const std::span<const uint8_t> bytes = BytesOf(*table);
    if (size != nullptr) *size = bytes.size();
    return bytes.data();
}

uint32_t quorlin_structure_count(const quorlin_fact_table* table) {
    return table == nullptr ? 0 : static_cast<uint32_t>(table->structures.size());
}

const quorlin_structure* quorlin_structure_at(const quorlin_fact_table* table, uint32_t index) {
    return StructureAt(table, index);
}

quorlin_status quorlin_walk_open(const quorlin_fact_table* table, quorlin_fact_walk** walk) {
    if (table == nullptr || walk == nullptr) return QUORLIN_NULL_POINTER;
    return Guarded([&] {
        auto made = std::make_unique<quorlin_fact_walk>();
        made->table = table;
        made->options = {.version = VersionOf(*table), .handles = &*table->handles};
        *walk = made.release();
        return quorlin_status{QUORLIN_OK};
    });
}

void quorlin_walk_close(quorlin_fact_walk* walk) { delete walk; }

quorlin_status quorlin_walk_begin(quorlin_fact_walk* walk, uint32_t index, int with_absent) {
    if (walk == nullptr) return QUORLIN_NULL_POINTER;
    const quorlin_structure* structure = StructureAt(walk->table, index);
    if (structure == nullptr) return QUORLIN_BAD_VALUE;
    walk->options.listsAbsent = with_absent != 0;
    walk->facts.Begin({structure->bytes, structure->size}, walk->options);
    return QUORLIN_OK;
}

const quorlin_fact* quorlin_walk_next(quorlin_fact_walk* walk) {
    return walk == nullptr ? nullptr : reinterpret_cast<const quorlin_fact*>(walk->facts.NextFact());
}

const char* quorlin_walk_word(const quorlin_fact_walk* walk, uint32_t* bit) {
    const Fact_t* fact = FactOf(walk);
    if (fact == nullptr || bit == nullptr || fact->kind != FactKind_t::kBits) return nullptr;
    const StandardType_t& type = walk->facts.Type();
    while (*bit < 64) {
        const uint32_t at = (*bit)++;
        if ((fact->number >> at & 1) == 0) continue;
        if (const StandardCode_t* row = type.FindCode(*fact->field, at)) return type.Text(row->word).data();
    }
    return nullptr;
}

const char* quorlin_walk_source(const quorlin_fact_walk* walk, uint32_t index) {
    const Fact_t* fact = FactOf(walk);
    if (fact == nullptr || index >= fact->field->sources) return nullptr;
    return walk->facts.SourceKey(*fact, index).data();
}

const char* quorlin_unit_text(uint32_t unit) {
    return unit < std::size(kUnitNames) ? UnitName(static_cast<Unit_t>(unit)) : "";
}

const char* quorlin_state_text(uint32_t state) { return state < std::size(kStateNames) ? kStateNames[state] : ""; }
