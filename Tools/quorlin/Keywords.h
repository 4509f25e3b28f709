// Keywords: short names for single values of a table, such as "system-serial-number".
#pragma once

#include <string>

#include "Tools/quorlin/CommandLine.h"
#include "Tools/quorlin/Source.h"

// All keywords.
Choices_t KeywordChoices();
// All keywords in one line, with ", " between them.
std::string KeywordList();
bool IsKeyword(const std::string& word);

// Prints the values of a keyword, a line for each structure that has the field. A text is printed as it is, "Not
// Specified" if there is none; bytes that aren't printable ASCII become dots. Returns the program's exit code.
int PrintKeyword(const Source_t& source, const std::string& keyword);
