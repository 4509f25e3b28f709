#include "Tests/ScriptedWindows/ScriptedWindows.h"

#include <algorithm>

size_t ClScriptedWindows::failAllocationOf = 0;

static ClScriptedWindows platform;

ClScriptedWindows& Machine() { return platform; }

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

ClScriptedWindows& NewMachine() {
    ClScriptedWindows::failAllocationOf = 0;
    platform = ClScriptedWindows();
    return platform;
}

uint64_t DeviceRequest_t::Number(size_t offset, size_t width) const {
    uint64_t number = 0;
    for (size_t index = width; index > 0; --index) number = number << 8 | in.at(offset + index - 1);
    return number;
}

std::string ClScriptedWindows::Open() const {
    std::string text;
    for (const auto& [handle, kind] : m_handles) text += kind + " ";
    return text;
}

std::string ClScriptedWindows::State() const {
    std::string text = !service.exists ? "no service" : service.state == SERVICE_RUNNING ? "running" : "stopped";
    if (SharedCount()) text += ", count " + std::to_string(*SharedCount());
    return m_handles.empty() ? text : text + ", " + Open();
}

bool ClScriptedWindows::Called(const std::string& call) const { return std::ranges::find(calls, call) != calls.end(); }

bool ClScriptedWindows::Traced(uint32_t level, const std::string& text) const {
    return std::ranges::any_of(lines,
                               [&](const TraceLine_t& line) { return line.level == level && line.text == text; });
}

void ClScriptedWindows::OtherProcess(int opens) {
    otherProcesses += static_cast<uint32_t>(opens);
    section += static_cast<uint32_t>(opens);
    if (opens < 0) return;
    service.exists = true;
    service.path = kDriverFile;
    service.state = SERVICE_RUNNING;
}

std::optional<uint32_t> ClScriptedWindows::SharedCount() const {
    const bool held = otherProcesses != 0 || std::ranges::any_of(m_handles, [](const auto& each) {
                          return each.second == "section" || each.second == "view";
                      });
    return held ? std::optional(section) : std::nullopt;
}

bool ClScriptedWindows::Call(const char* function, DWORD error) {
    const std::string name = std::string(function) + "#" + std::to_string(++m_occurrences[function]);
    calls.push_back(name);
    if (calls.size() != failCall && !failCalls.contains(name)) return true;
    return Fail(error) != FALSE;
}

bool ClScriptedWindows::Call(const char* function, HANDLE handle, const char* kind) {
    return Call(function) && (IsOpen(handle, kind) || Fail(ERROR_INVALID_HANDLE) != FALSE);
}

HANDLE ClScriptedWindows::Add(const char* kind) {
    m_nextHandle += 16;
    const HANDLE handle = reinterpret_cast<HANDLE>(m_nextHandle);
    m_handles[handle] = kind;
    return handle;
}

bool ClScriptedWindows::IsOpen(HANDLE handle, const char* kind) const {
    const auto found = m_handles.find(handle);
    return found != m_handles.end() && found->second == kind;
}

bool ClScriptedWindows::Remove(HANDLE handle) { return m_handles.erase(handle) != 0; }

// The test programs are linked with --wrap=malloc.
extern "C" {
void* __real_malloc(size_t size);
void* __wrap_malloc(size_t size);

void* __wrap_malloc(size_t size) {
    const bool fails = size != 0 && size == ClScriptedWindows::failAllocationOf;
    return fails ? nullptr : __real_malloc(size);
}
}
