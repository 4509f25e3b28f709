#include "Packages/OS/SystemFacts.h"

#include <algorithm>
#include <cstdio>

#include "Packages/Format/Ascii.h"
#include "Packages/OS/Processors.h"
// winsock2.h must come before windows.h.
#include <winsock2.h>

#include <iphlpapi.h>

#include "Packages/OS/Windows/Windows.h"

namespace {

// A system library for the few calls that need it, so that programs start without it.
class ClLibrary {
  public:
    explicit ClLibrary(const wchar_t* name) : m_module(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}
    ClLibrary(const ClLibrary&) = delete;
    ClLibrary& operator=(const ClLibrary&) = delete;
    ~ClLibrary() {
        if (m_module != nullptr) FreeLibrary(m_module);
    }
    // Null if the library or its function isn't there.
    template <class Function>
    Function* Find(const char* name) const {
        return m_module == nullptr
                   ? nullptr
                   : reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }

  private:
    HMODULE m_module;
};

std::optional<uint64_t> ReadNumber(const std::string& key, const char* value) {
    DWORD number = 0, size = sizeof number;
    return RegGetValueA(HKEY_LOCAL_MACHINE, key.c_str(), value, RRF_RT_REG_DWORD, nullptr, &number, &size) ==
                   ERROR_SUCCESS
               ? std::optional<uint64_t>(number)
               : std::nullopt;
}

std::optional<uint64_t> CountOf(LOGICAL_PROCESSOR_RELATIONSHIP kind) {
    DWORD size = 0;
    GetLogicalProcessorInformationEx(kind, nullptr, &size);
    std::vector<uint64_t> room(size / sizeof(uint64_t) + 1);
    auto* const rows = reinterpret_cast<SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX*>(room.data());
    if (size == 0 || !GetLogicalProcessorInformationEx(kind, rows, &size)) return std::nullopt;
    uint64_t count = 0;
    for (const char* at = reinterpret_cast<const char*>(rows); size != 0; count++) {
        const DWORD step = reinterpret_cast<const SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX*>(at)->Size;
        if (step == 0 || step > size) return std::nullopt;
        at += step;
        size -= step;
    }
    return count;
}

void AddResources(SystemFacts_t* facts) {
    const std::string rows = "HARDWARE\\UEFI\\ESRT";
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, rows.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    char name[64];
    for (DWORD index = 0, size = sizeof name;
         RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         index++, size = sizeof name) {
        const auto type = ReadNumber(rows + "\\" + name, "Type"), version = ReadNumber(rows + "\\" + name, "Version");
        if (!type || !version) continue;
        std::string id = name;  // in braces
        std::erase_if(id, [](char c) { return c == '{' || c == '}'; });
        std::ranges::transform(id, id.begin(), LowerCase);
        facts->resources.push_back({id, static_cast<uint32_t>(*type), static_cast<uint32_t>(*version)});
    }
    RegCloseKey(key);
    std::ranges::sort(facts->resources, {}, &FirmwareResource_t::id);
}

void AddNetworkAddresses(SystemFacts_t* facts) {
    const ClLibrary library(L"iphlpapi.dll");
    auto* const read = library.Find<decltype(GetAdaptersAddresses)>("GetAdaptersAddresses");
    constexpr ULONG kMostBytes = 1u << 20;
    std::vector<uint64_t> room(kMostBytes / sizeof(uint64_t));
    ULONG size = kMostBytes;
    auto* adapter = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(room.data());
    if (read == nullptr || read(AF_UNSPEC, GAA_FLAG_SKIP_UNICAST, nullptr, adapter, &size) != ERROR_SUCCESS) return;
    for (; adapter != nullptr; adapter = adapter->Next) {
        constexpr ULONG kBytes = 6;
        constexpr ULONG kEthernet = 6, kWireless = 71;  // types of interfaces
        if (adapter->PhysicalAddressLength != kBytes || (adapter->IfType != kEthernet && adapter->IfType != kWireless))
            continue;
        char digits[2 * kBytes + 1];
        for (ULONG place = 0; place < kBytes; place++)
            std::snprintf(digits + 2 * place, 3, "%02x", adapter->PhysicalAddress[place]);
        facts->networkAddresses.emplace_back(digits);
    }
    std::ranges::sort(facts->networkAddresses);
}

// As Windows' tbs.h has them.
struct TpmFacts_t {
    UINT32 structVersion, tpmVersion, tpmInterfaceType, tpmImpRevision;
};
using GetTpmFacts_t = UINT32 WINAPI(UINT32 size, void* facts);

std::optional<uint64_t> TpmVersion() {
    constexpr UINT32 kDone = 0, kNoTpm = 0x8028400F;
    const ClLibrary library(L"tbs.dll");
    auto* const read = library.Find<GetTpmFacts_t>("Tbsi_GetDeviceInfo");
    TpmFacts_t facts = {1, 0, 0, 0};
    const UINT32 result = read == nullptr ? ~kDone : read(sizeof facts, &facts);
    if (result == kNoTpm) return 0;
    return result == kDone ? std::optional<uint64_t>(facts.tpmVersion) : std::nullopt;
}

}  // namespace

SystemFacts_t ReadSystemFacts() {
    SystemFacts_t facts;
    facts.packages = CountOf(RelationProcessorPackage);
    facts.cores = CountOf(RelationProcessorCore);
    if (const uint32_t count = os_GetProcessorCount(); count != 0) facts.threads = count;
    facts.baseSpeed = ReadNumber("HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", "~MHz");
    facts.tpm = TpmVersion();
    // The size that Windows calls installed is the table's.
    MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    if (GlobalMemoryStatusEx(&memory)) facts.usableMemory = memory.ullTotalPhys;
    AddResources(&facts);
    AddNetworkAddresses(&facts);
    return facts;
}
