// Prints the items of a package.
#pragma once

#include "Sources/Quorlin.h"
#include "Tools/quorlin/Options.h"
#include "Tools/quorlin/Output.h"

// Everything that the package holds, from its cursor on: each item as GetNextItem gives it for kLines; for people
// otherwise.
void ShowItems(Quorlin& package, Format_t format, ClOutput& output);
