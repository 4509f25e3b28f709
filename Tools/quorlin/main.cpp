// The host program.
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/Commands.h"

// Replaces the C++ library's, which would also print the name of the exception. For that it brings along a demangler,
// whose tables cost every start some instructions.
namespace __gnu_cxx {                 // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void __verbose_terminate_handler() {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
    std::fputs("quorlin: ended by an exception that nothing caught\n", stderr);
    std::abort();
}
}  // namespace __gnu_cxx

int main(int argc, char** argv) {
    PrepareStandardStreams();
    Arguments_t arguments = ProgramArguments(argc, argv);
    if (!arguments.empty()) arguments.erase(arguments.begin());
    return RunProgram(std::move(arguments));
}
