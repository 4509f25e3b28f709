// Opens any bytes as an image through the C interface.
// Input: the options, the error in their size (1 byte), the image.
#include <cstring>

#include "CInterface/quorlin_c.h"
#include "Fuzz/Fuzz.h"

static void ReadAll(quorlin_table* table) {
    uint8_t major, minor;
    Require(quorlin_smbios_version(table, &major, &minor) == QUORLIN_OK);
    Require(*quorlin_form(table) != '\0' && quorlin_remark(table) != nullptr);
    const uint32_t count = quorlin_count(table);
    quorlin_item item, same, title;
    for (uint32_t index = 0; index < count; index++) {
        Require(quorlin_next(table, &item) == QUORLIN_OK && item.index == index && item.kind <= QUORLIN_GROUP);
        Require(quorlin_get(table, index, &same) == QUORLIN_OK && same.key == item.key && same.value == item.value);
        Require(quorlin_value(table, index) == item.value);
        Require(item.kind == QUORLIN_ITEM || *item.value == '\0');
        Require(item.structure <= index && quorlin_get(table, item.structure, &title) == QUORLIN_OK);
        Require(title.kind == QUORLIN_STRUCTURE && std::strstr(title.key, " {Type ") != nullptr);
        // An item is found by its own key, from itself on.
        Require(quorlin_find(table, item.key, index, &same) == QUORLIN_OK && same.index == index);
    }
    Require(quorlin_next(table, &item) == QUORLIN_NO_MORE && quorlin_get(table, count, &item) == QUORLIN_BAD_VALUE);
    Require(quorlin_value(table, count) == nullptr && quorlin_rewind(table) == QUORLIN_OK);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    quorlin_options options = {
        sizeof options, input.Take<uint32_t>(), input.Take<uint8_t>(), input.Take<uint8_t>(), 0, input.Take<uint8_t>(),
        nullptr};
    const auto wrong = input.Take<uint8_t>();
    options.size += wrong;
    const std::vector<uint8_t> image = input.Rest();
    quorlin_table* table = nullptr;
    const quorlin_status status =
        quorlin_open_memory(image.empty() ? data : image.data(), image.size(), &options, &table);
    Require((status == QUORLIN_OK) == (table != nullptr) && (status == QUORLIN_OK) == (*quorlin_last_error() == '\0'));
    Require(wrong == 0 || status == QUORLIN_BAD_VALUE);
    Require(*quorlin_status_text(status) != '\0' && quorlin_status_text(status) != quorlin_status_text(0));
    if (table != nullptr) ReadAll(table);
    quorlin_close(table);
    return 0;
}
