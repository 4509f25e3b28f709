// The commands, and the choice among them.
#include "Tools/quorlin/Commands.h"

#include <algorithm>
#include <cstdio>
#include <new>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Trace.h"

namespace {

struct Command_t {
    std::string_view name;
    const Usage_t& usage;
    int (*run)(const Arguments_t& arguments);  // those behind the command's name
};
constexpr Command_t kCommands[] = {
    {"show",  kShowUsage,     RunShow    },
    {"types", kTypesUsage,    RunTypes   },
    {"find",  kFindUsage,     RunFind    },
    {"get",   kGetUsage,      RunGet     },
    {"dump",  kDumpUsage,     RunDump    },
    {"raw",   kRawUsage,      RunRaw     },
    {"check", kCheckUsage,    RunCheck   },
    {"diff",  kDiffUsage,     RunDiff    },
    {"hw",    kHardwareUsage, RunHardware},
};

}  // namespace

int RunProgram(Arguments_t arguments) {
    const Command_t* command = &kCommands[0];  // without a command the options are those of show
    if (!arguments.empty() && !arguments.front().starts_with('-')) {
        command = std::ranges::find(kCommands, arguments.front(), &Command_t::name);
        if (command != std::end(kCommands)) {
            arguments.erase(arguments.begin());
        } else if (!IsThere(arguments.front())) {
            SayError("bad usage", "'" + arguments.front() + "' is neither a command nor a file; try quorlin --help");
            return kExitUsage;
        } else {
            command = &kCommands[0];
        }
    }
    int exitCode;
    try {
        exitCode = command->run(arguments);
    } catch (const std::bad_alloc&) {
        SayError("memory", kOutOfMemory);
        exitCode = command->usage.trouble;
    }
    EndTrace();
    // A message that nobody can have read is a failure too.
    return std::ferror(stderr) != 0 ? std::max(exitCode, command->usage.trouble) : exitCode;
}
