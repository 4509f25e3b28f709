// The host program.
#include <utility>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/Commands.h"

int main(int argc, char** argv) {
    PrepareStandardStreams();
    Arguments_t arguments = ProgramArguments(argc, argv);
    if (!arguments.empty()) arguments.erase(arguments.begin());
    return RunProgram(std::move(arguments));
}
