// The row form: many tables as CSV files of typed rows, for a data lake.
#pragma once

#include <string>

#include "Tools/quorlin/Source.h"

// Writes the tables of `source` into a new folder, one after the other. Returns the exit code.
int WriteRows(const Source_t& source, const std::string& folder);
