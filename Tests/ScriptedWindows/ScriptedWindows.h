// A scripted machine: stand-ins for service control, device, registry, clock, firmware tables, shared section and
// mutex, linked in place of the platform. A test sets the machine's state, makes any call fail, and checks which
// requests were made and what is still open.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Packages/OS/Windows/Windows.h"

inline constexpr char kDriverFile[] = "C:\\Drivers\\Ravelink.sys";

// The one service of the machine.
struct ScriptedService_t {
    bool exists = false;
    std::string path = {};
    DWORD startType = SERVICE_DEMAND_START;
    DWORD state = SERVICE_STOPPED;
    DWORD waitHint = 0;
    std::deque<DWORD> nextStates = {};   // returned by the next status queries; the last one stays
    std::deque<DWORD> startErrors = {};  // returned by the next starts
};

// A request that the device received.
struct DeviceRequest_t {
    DWORD code;
    std::vector<uint8_t> in;
    DWORD outSize;

    uint64_t Number(size_t offset, size_t width) const;
};

// A line that the code under test traced.
struct TraceLine_t {
    uint32_t level;
    std::string text;
};

class ClScriptedWindows {
  public:
    // ---- The machine's state, for tests to set
    ScriptedService_t service;
    std::optional<std::string> registryPath = kDriverFile;
    uint32_t processors = 8;
    uint32_t hypervisorECX = 0x7FFFFFFF;                 // of CPUID leaf 1: all but the hypervisor bit
    std::map<std::string, std::vector<uint8_t>> tables;  // ACPI tables by name, and RSMB
    std::map<uint64_t, uint8_t> memory;                  // bytes of physical memory; others read as address & 0xFF
    DWORD waitAnswer = WAIT_OBJECT_0;
    DWORD tickCount = 0xFFFFC000;  // 16 seconds before it wraps to 0

    // ---- Failures: the call of this number in `calls`, and calls by name and occurrence ("OpenServiceA#2")
    size_t failCall = 0;
    std::set<std::string> failCalls;
    // Table sizes that the next calls of GetSystemFirmwareTable return instead of the true ones.
    std::deque<UINT> tableAnswers;
    // Allocations of this size fail.
    static size_t failAllocationOf;

    // ---- What happened
    std::vector<std::string> calls;  // that acquire or query something, by name and occurrence
    std::vector<DeviceRequest_t> requests;
    std::vector<DWORD> sleeps;
    std::vector<DWORD> controls;  // sent to the service
    std::vector<TraceLine_t> lines;
    int traceHandles = 0;  // opened and not yet closed
    int badCloses = 0;     // closes and unmaps of something that isn't open
    LPVOID sectionSecurity = nullptr;

    // Handles, views and keys that are open, by kind.
    std::string Open() const;
    // The service, the machine-wide count and what is open: "running, count 1, section view device ".
    std::string State() const;
    bool Called(const std::string& call) const;
    bool Traced(uint32_t level, const std::string& text) const;

    // Another process of the machine opens the running driver (1) or closes it (-1).
    void OtherProcess(int opens);
    // The machine-wide count, or nothing while no process has the section open.
    std::optional<uint32_t> SharedCount() const;

    // ---- For the stand-ins
    // Notes a call. Returns false, with the last error set, for a call that must fail.
    bool Call(const char* function, DWORD error = ERROR_ACCESS_DENIED);
    // The same for a call with a handle, which also fails unless the handle is open and of this kind.
    bool Call(const char* function, HANDLE handle, const char* kind);
    HANDLE Add(const char* kind);
    bool IsOpen(HANDLE handle, const char* kind) const;
    bool Remove(HANDLE handle);

    uint32_t section = 0;
    uint32_t otherProcesses = 0;
    bool mutexHeld = false;

  private:
    std::map<HANDLE, std::string> m_handles;
    std::map<std::string, int> m_occurrences;
    uintptr_t m_nextHandle = 0x5C000000;
};

ClScriptedWindows& Machine();
// Sets the last error and returns FALSE.
BOOL Fail(DWORD error);
// Starts with a new machine, on which nothing is set, open or noted.
ClScriptedWindows& NewMachine();
