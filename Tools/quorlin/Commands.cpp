// The commands, and the choice among them.
#include "Tools/quorlin/Commands.h"

#include <algorithm>

#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Trace.h"

namespace {

struct Command_t {
    std::string_view name;
    int (*run)(const Arguments_t& arguments);  // those behind the command's name; gives the exit code
};
constexpr Command_t kCommands[] = {
    {"show",  RunShow    },
    {"types", RunTypes   },
    {"find",  RunFind    },
    {"get",   RunGet     },
    {"dump",  RunDump    },
    {"raw",   RunRaw     },
    {"check", RunCheck   },
    {"diff",  RunDiff    },
    {"hw",    RunHardware},
};

}  // namespace

int RunProgram(Arguments_t arguments) {
    const Command_t* command = &kCommands[0];  // without a command the options are those of show
    if (!arguments.empty() && !arguments.front().starts_with('-')) {
        command = std::ranges::find(kCommands, arguments.front(), &Command_t::name);
        if (command == std::end(kCommands)) {
            SayError("bad usage", "'" + arguments.front() + "' is no command; try quorlin --help");
            return kExitUsage;
        }
        arguments.erase(arguments.begin());
    }
    const int exitCode = command->run(arguments);
    EndTrace();
    return exitCode;
}
