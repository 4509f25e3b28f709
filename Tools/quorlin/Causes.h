// Messages for steps that failed on this machine: what the problem is, and what to try on this system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"

struct Cause_t {
    std::string problem;
    std::string advice;       // "try ..."
    bool lacksAccess = true;  // to this machine, of which `quorlin doctor` tells more

    // Both, and where to learn more.
    std::string Text() const;
};

// The results of bringing up this machine. A step that wasn't taken has no value.
struct Steps_t {
    std::optional<status_t> start;      // of the hardware library
    std::optional<status_t> firmware;   // the system's firmware-table call
    std::optional<MemoryEnd_t> memory;  // of the method that reads it
    std::optional<status_t> cpuid;
    Refusal_t refusal = Refusal_t::kOther;  // of the start or of reading memory

    // Whether the driver failed. The table may still be readable without it.
    bool FailedAtDriver() const { return start.value_or(kSuccess) != kSuccess || cpuid.value_or(kSuccess) != kSuccess; }
};

// The name of an obstacle, for programs.
std::string_view WordOf(Obstacle_t obstacle);
// An obstacle as people read it. kNone has no advice.
Cause_t CauseOf(Obstacle_t obstacle);

// What kept a method that reads memory from the table; kOther where only the hardware library knows.
Obstacle_t ObstacleOf(MemoryEnd_t end);

// `other` is the advice if more rights wouldn't help.

// Why these steps found no table.
Cause_t WhyNoTable(const Steps_t& steps, const char* other);
// Why a start of the hardware library failed with `status`.
Cause_t WhyNoStart(status_t status, Refusal_t refusal, const char* other);
// Why an operation of the hardware library failed with `status`.
Cause_t WhyNoAnswer(status_t status, Refusal_t refusal, const char* other);
