// The C interface: a package that is opened, copied into a handle and closed at once.
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "CInterface/Opening.h"
#include "Sources/Items.h"
#include "Sources/Types.h"

#define QUORLIN_TEXT(number) #number
#define QUORLIN_VERSION_TEXT(major, minor, patch) QUORLIN_TEXT(major) "." QUORLIN_TEXT(minor) "." QUORLIN_TEXT(patch)

namespace {

// An item whose key begins at `key` in the table's texts, and whose value begins `value` bytes later.
struct TableItem_t {
    size_t key;
    uint32_t value;
    uint32_t structure;
    uint32_t kind;
};

// A small table needs no more.
constexpr size_t kUsualItems = 256, kUsualTexts = 8 << 10;

}  // namespace

struct quorlin_table {
    std::vector<TableItem_t> items;
    std::string texts;   // keys and values in the order of the items, each with its NUL
    uint32_t title = 0;  // number of the last title
    uint32_t cursor = 0;
    uint8_t major = 0, minor = 0;
    std::string form, remark;
};

namespace {

static_assert(QUORLIN_OK == kSuccess && QUORLIN_BAD_VALUE == kBadValue && QUORLIN_NO_MEMORY == kNoMemory &&
              QUORLIN_NULL_POINTER == kNullPointer && QUORLIN_NO_TABLE == kFailure);

uint32_t KindOf(const Item_t& item) { return item.facts.kind == ItemKind_t::kGroup ? QUORLIN_GROUP : QUORLIN_ITEM; }

// Appends a title. Its value is empty.
void CopyTitle(const Item_t& title, quorlin_table* table) {
    std::string& texts = table->texts;
    const size_t key = texts.size();
    title.AppendKey(texts);
    texts.resize(texts.size() - kGroupMark.size());
    const auto value = static_cast<uint32_t>(texts.size() + 1 - key);
    texts.append(2, '\0');
    table->title = static_cast<uint32_t>(table->items.size());
    table->items.push_back({key, value, table->title, QUORLIN_STRUCTURE});
}

// Copies a text and a NUL to `place`, and returns the place after them.
char* CopyText(std::string_view text, char* place) {
    place = PutText(place, text);
    *place = '\0';
    return place + 1;
}

// Appends the items of a structure. Its title, if it has one, is the first.
void CopyItems(const ClItemList& items, quorlin_table* table) {
    const bool hasTitle = items.Size() != 0 && items[0].facts.kind == ItemKind_t::kTitle;
    if (hasTitle) CopyTitle(items[0], table);
    const size_t first = hasTitle ? 1 : 0, count = items.Size();
    size_t key = table->texts.size(), size = key;
    for (size_t index = first; index < count; index++) size += items[index].key.size() + items[index].value.size() + 2;
    table->texts.resize(size);
    char* const texts = table->texts.data();
    const uint32_t title = table->title;
    for (size_t index = first; index < count; index++) {
        const Item_t& item = items[index];
        const auto value = static_cast<uint32_t>(item.key.size() + 1);
        table->items.push_back({key, value, title, KindOf(item)});
        key = static_cast<size_t>(CopyText(item.value, CopyText(item.key, texts + key)) - texts);
    }
}

// What is known of the table as a whole. Expects a store that is up; `image` is null for this machine.
void DescribeTable(const Image_t* image, quorlin_table* table) {
    const TableFacts_t& facts = *FactsOfTable();
    table->major = facts.major;
    table->minor = facts.minor;
    table->form = image == nullptr ? "this machine" : image->FormText();
    if (image != nullptr) AddRemark(&table->remark, image->Remark());
    const bool saysCut = image != nullptr && image->missing != 0;
    if (!saysCut || !facts.isCut) AddRemark(&table->remark, facts.Remark());
    if (image != nullptr && !image->checksumsFit) AddRemark(&table->remark, "the entry point's checksums don't fit");
    if (!facts.hasEnd) AddRemark(&table->remark, "no End-of-Table structure ends it");
}

// The types that a table shows, in the order of its items.
std::vector<uint8_t> TypesFor(const quorlin_options& wanted) {
    std::vector<uint8_t> types;
    types.reserve(TypeRows().size());
    for (const TypeRow_t& row : TypeRows())
        if (row.sweep == Sweep_t::kSwept) types.push_back(row.type);
    if (wanted.type_148 != 0) types.push_back(148);
    return types;
}

// Makes a handle of the items of the machine that `choose` selects; `image` is null for this machine.
template <class Choose>
quorlin_status Open(quorlin_table** out, const quorlin_options& wanted, const Image_t* image, const Choose& choose) {
    ClPackageInUse package;
    if (package.IsBusy()) return QUORLIN_BUSY;
    choose();
    if (package->BringUp() != kSuccess) return QUORLIN_NO_TABLE;
    auto table = std::make_unique<quorlin_table>();
    DescribeTable(image, table.get());
    table->items.reserve(kUsualItems);
    table->texts.reserve(kUsualTexts);
    const status_t status = package->VisitTypes(TypesFor(wanted), [&](const uint8_t*, const ClItemList& items) {
        CopyItems(items, table.get());
        return true;
    });
    if (package->HadTooManyItems()) return QUORLIN_TOO_MANY_ITEMS;
    if (status != kSuccess) return QUORLIN_NO_TABLE;
    *out = table.release();
    return QUORLIN_OK;
}

// Opens an image if `status` says that it was read.
quorlin_status OpenImage(quorlin_table** out, const quorlin_options& wanted, quorlin_status status,
                         const Image_t& image) {
    if (status != QUORLIN_OK) return status;
    return Open(out, wanted, &image, [&image] { SetImageMachine(&image.source); });
}

quorlin_item Shown(const quorlin_table& table, uint32_t index) {
    const TableItem_t& item = table.items[index];
    const char* key = table.texts.data() + item.key;
    return {key, key + item.value, index, item.structure, item.kind};
}

}  // namespace

quorlin_status quorlin_open_machine(const quorlin_options* options, quorlin_table** table) {
    return Opening(table != nullptr, options, [&](const quorlin_options& wanted) {
        return OpenMachine(wanted, [&](const auto& choose) { return Open(table, wanted, nullptr, choose); });
    });
}

quorlin_status quorlin_open_file(const char* path, const quorlin_options* options, quorlin_table** table) {
    return Opening(path != nullptr && table != nullptr, options, [&](const quorlin_options& wanted) {
        Image_t image;
        const quorlin_status status = ReadFileImage(path, wanted, &image);
        return OpenImage(table, wanted, status, image);
    });
}

quorlin_status quorlin_open_memory(const void* bytes, size_t size, const quorlin_options* options,
                                   quorlin_table** table) {
    return Opening(bytes != nullptr && table != nullptr, options, [&](const quorlin_options& wanted) {
        Image_t image;
        const quorlin_status status = ReadMemoryImage(bytes, size, wanted, &image);
        return OpenImage(table, wanted, status, image);
    });
}

void quorlin_close(quorlin_table* table) { delete table; }

quorlin_status quorlin_smbios_version(const quorlin_table* table, uint8_t* major, uint8_t* minor) {
    if (table == nullptr) return QUORLIN_NULL_POINTER;
    if (major != nullptr) *major = table->major;
    if (minor != nullptr) *minor = table->minor;
    return QUORLIN_OK;
}

const char* quorlin_form(const quorlin_table* table) { return table == nullptr ? nullptr : table->form.c_str(); }

const char* quorlin_remark(const quorlin_table* table) { return table == nullptr ? nullptr : table->remark.c_str(); }

quorlin_status quorlin_next(quorlin_table* table, quorlin_item* item) {
    if (table == nullptr || item == nullptr) return QUORLIN_NULL_POINTER;
    if (table->cursor >= table->items.size()) return QUORLIN_NO_MORE;
    *item = Shown(*table, table->cursor++);
    return QUORLIN_OK;
}

quorlin_status quorlin_rewind(quorlin_table* table) {
    if (table == nullptr) return QUORLIN_NULL_POINTER;
    table->cursor = 0;
    return QUORLIN_OK;
}

uint32_t quorlin_count(const quorlin_table* table) {
    return table == nullptr ? 0 : static_cast<uint32_t>(table->items.size());
}

quorlin_status quorlin_get(const quorlin_table* table, uint32_t index, quorlin_item* item) {
    if (table == nullptr || item == nullptr) return QUORLIN_NULL_POINTER;
    if (index >= table->items.size()) return QUORLIN_BAD_VALUE;
    *item = Shown(*table, index);
    return QUORLIN_OK;
}

const char* quorlin_value(const quorlin_table* table, uint32_t index) {
    return index < quorlin_count(table) ? Shown(*table, index).value : nullptr;
}

quorlin_status quorlin_find(const quorlin_table* table, const char* key, uint32_t from, quorlin_item* item) {
    if (table == nullptr || key == nullptr || item == nullptr) return QUORLIN_NULL_POINTER;
    const std::string_view wanted = key;
    for (uint32_t index = from; index < table->items.size(); index++) {
        if (wanted != Shown(*table, index).key) continue;
        *item = Shown(*table, index);
        return QUORLIN_OK;
    }
    return QUORLIN_NO_MORE;
}

const char* quorlin_status_text(quorlin_status status) {
    switch (status) {
        case QUORLIN_OK: return "success";
        case QUORLIN_BAD_VALUE: return "an argument's value is out of range";
        case QUORLIN_NO_MEMORY: return "out of memory";
        case QUORLIN_NULL_POINTER: return "an argument is null";
        case QUORLIN_NO_TABLE: return "this machine has no SMBIOS table, or doesn't let this user read it";
        case QUORLIN_NO_MORE: return "there is no such item, or none after the last one";
        case QUORLIN_BUSY: return "the process has a package open, and one table is read at a time";
        case QUORLIN_TOO_MANY_ITEMS: return "more items than a table of this size can have";
        case QUORLIN_NO_IMAGE: return "the file can't be read, or has no table";
        default: return "unknown status";
    }
}

const char* quorlin_version() {
    return QUORLIN_VERSION_TEXT(QUORLIN_VERSION_MAJOR, QUORLIN_VERSION_MINOR, QUORLIN_VERSION_PATCH);
}
