// Chooses a command and runs it.
#include "Tools/quorlin/Commands.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <string_view>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/Help.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Trace.h"

namespace {

constexpr const Command_t* kCommands[] = {
#define COMMAND(name) &k##name##Command,
#include "Tools/quorlin/Commands.inc"
#undef COMMAND
};

int RunCommand(const Command_t& command, const Arguments_t& arguments) try {
    const std::unique_ptr<ClCommand> run = command.make();
    const std::vector<Option_t> options = run->Options();
    return ParseCommandLine(options, arguments) ? run->Run() : PrintHelp(command, options);
} catch (const BadUsage_t& bad) {
    SayError("bad usage", bad.message + "; try " + TypedName(command) + " --help");
    return kExitUsage;
} catch (const std::bad_alloc&) {
    SayError("memory", kOutOfMemory);
    return command.trouble;
}

}  // namespace

std::span<const Command_t* const> Commands() { return kCommands; }

std::string TypedName(const Command_t& command) {
    return &command == kCommands[0] ? "quorlin" : std::string("quorlin ") + command.name;
}

int RunProgram(Arguments_t arguments) {
    const Command_t* command = kCommands[0];
    if (!arguments.empty() && !arguments.front().starts_with('-')) {
        const auto named = std::ranges::find(kCommands, std::string_view(arguments.front()),
                                             [](const Command_t* each) { return std::string_view(each->name); });
        if (named != std::end(kCommands)) {
            command = *named;
            arguments.erase(arguments.begin());
        } else if (!IsThere(arguments.front())) {
            SayError("bad usage", "'" + arguments.front() + "' is neither a command nor a file; try quorlin --help");
            return kExitUsage;
        }
    }
    const int exitCode = RunCommand(*command, arguments);
    EndTrace();
    // A message that nobody can have read is a failure too.
    return std::ferror(stderr) != 0 ? std::max(exitCode, command->trouble) : exitCode;
}
