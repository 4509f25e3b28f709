// The commands. Each is one file in Commands and one row in Commands.inc.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Tools/quorlin/CommandLine.h"

// One run of a command. Its options point to its members.
class ClCommand {
  public:
    virtual ~ClCommand() = default;
    virtual std::vector<Option_t> Options() = 0;
    // Runs with the options that were read, and returns the exit code. Throws BadUsage_t if they don't fit together.
    virtual int Run() = 0;
};

template <class Command>
std::unique_ptr<ClCommand> MakeCommand() {
    return std::make_unique<Command>();
}

struct Command_t {
    const char* name;         // as typed
    const char* summary;      // in the list of commands
    const char* description;  // in its own help
    const char* footer;       // of its own help: examples and exit codes
    int trouble;              // exit code if it can't be done: no table, no memory, output that can't be written
    std::unique_ptr<ClCommand> (*make)();
};

#define COMMAND(name) extern const Command_t k##name##Command;
#include "Tools/quorlin/Commands.inc"
#undef COMMAND

// All commands; the first one is the default.
std::span<const Command_t* const> Commands();
// How a user types it: "quorlin find", or "quorlin" for the default.
std::string TypedName(const Command_t& command);

// Runs the command that the first argument names, or the default; returns the program's exit code.
int RunProgram(Arguments_t arguments);
