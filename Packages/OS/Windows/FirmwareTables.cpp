#include "Packages/OS/FirmwareTables.h"

#include "Packages/OS/Windows/Windows.h"

uint32_t os_GetFirmwareTable(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused) {
    const UINT size = GetSystemFirmwareTable(provider, table, buffer, room);
    if (refused != nullptr) *refused = size == 0 && GetLastError() == ERROR_ACCESS_DENIED;
    return size;
}
