#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"

bool ArchitectureHas(Way_t) { return true; }
