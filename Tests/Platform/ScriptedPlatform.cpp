#include "Tests/Platform/ScriptedPlatform.h"

#include <algorithm>

size_t ClScriptedPlatform::failAllocationOf = 0;

static ClScriptedPlatform platform;

ClScriptedPlatform& Platform() { return platform; }

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

ClScriptedPlatform& NewPlatform() {
    ClScriptedPlatform::failAllocationOf = 0;
    platform = ClScriptedPlatform();
    return platform;
}

uint64_t DeviceRequest_t::Number(size_t offset, size_t width) const {
    uint64_t number = 0;
    for (size_t index = width; index > 0; --index) number = number << 8 | in.at(offset + index - 1);
    return number;
}

std::string ClScriptedPlatform::Open() const {
    std::string text;
    for (const auto& [handle, kind] : m_handles) text += kind + " ";
    return text;
}

bool ClScriptedPlatform::Called(const std::string& function) const {
    return std::ranges::find(calls, function + "#1") != calls.end();
}

bool ClScriptedPlatform::Traced(uint32_t level, const std::string& text) const {
    return std::ranges::any_of(lines,
                               [&](const TraceLine_t& line) { return line.level == level && line.text == text; });
}

void ClScriptedPlatform::OtherProcess(int opens) {
    otherProcesses += static_cast<uint32_t>(opens);
    section += static_cast<uint32_t>(opens);
    if (opens < 0) return;
    service.exists = true;
    service.path = kDriverFile;
    service.state = SERVICE_RUNNING;
}

std::optional<uint32_t> ClScriptedPlatform::SharedCount() const {
    const bool held = otherProcesses != 0 || std::ranges::any_of(m_handles, [](const auto& each) {
                          return each.second == "section" || each.second == "view";
                      });
    return held ? std::optional(section) : std::nullopt;
}

bool ClScriptedPlatform::Call(const char* function, DWORD error) {
    const std::string name = std::string(function) + "#" + std::to_string(++m_occurrences[function]);
    calls.push_back(name);
    if (calls.size() != failCall && !failCalls.contains(name)) return true;
    return Fail(error) != FALSE;
}

HANDLE ClScriptedPlatform::Add(const char* kind) {
    m_nextHandle += 16;
    const HANDLE handle = reinterpret_cast<HANDLE>(m_nextHandle);
    m_handles[handle] = kind;
    return handle;
}

bool ClScriptedPlatform::IsOpen(HANDLE handle, const char* kind) const {
    const auto found = m_handles.find(handle);
    return found != m_handles.end() && found->second == kind;
}

bool ClScriptedPlatform::Remove(HANDLE handle) { return m_handles.erase(handle) != 0; }
