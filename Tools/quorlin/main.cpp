// The host program.
#include <new>
#include <utility>

#include "Packages/Platform/Program.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Output.h"

int main(int argc, char** argv) try {
    PrepareStandardOutput();
    Arguments_t arguments = ProgramArguments(argc, argv);
    if (!arguments.empty()) arguments.erase(arguments.begin());
    return RunProgram(std::move(arguments));
} catch (const std::bad_alloc&) {
    SayError("memory", "not enough for this table");
    return kExitTrouble;
}
