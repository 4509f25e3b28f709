#include "Packages/OS/FirmwareTables.h"

#include "Packages/OS/Windows/Windows.h"

uint32_t os_GetFirmwareTable(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused) {
    const UINT size = GetSystemFirmwareTable(provider, table, buffer, room);
    if (refused != nullptr) *refused = size == 0 && GetLastError() == ERROR_ACCESS_DENIED;
    return size;
}

std::vector<uint32_t> os_ListACPITables() {
    const UINT size = EnumSystemFirmwareTables(kACPIProvider, nullptr, 0);
    std::vector<uint32_t> tables(size / sizeof(uint32_t));
    // The list may have grown meanwhile.
    const UINT got = EnumSystemFirmwareTables(kACPIProvider, tables.data(), size);
    tables.resize(got > size ? 0 : got / sizeof(uint32_t));
    return tables;
}

bool os_ReadACPITable(uint32_t table, uint32_t place, std::vector<uint8_t>* bytes, bool* refused) {
    *refused = false;
    if (place != 0) return false;
    const uint32_t size = os_GetFirmwareTable(kACPIProvider, table, nullptr, 0, refused);
    bytes->resize(size);
    return size != 0 && os_GetFirmwareTable(kACPIProvider, table, bytes->data(), size, refused) == size;
}

status_t os_GetEntryAddresses(EntryAddresses_t*, bool* refused) {
    *refused = false;
    return kNotSupported;
}
