// A command's help, made from its row and its options.
#pragma once

#include <span>

#include "Tools/quorlin/Commands.h"

// Prints it, and returns the exit code.
int PrintHelp(const Command_t& command, std::span<const Option_t> options);

// "quorlin find [OPTIONS] TEXT"
std::string Synopsis(const Command_t& command, std::span<const Option_t> options);
