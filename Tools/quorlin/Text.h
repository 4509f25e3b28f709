// Makes text from firmware safe for people and other programs. It is untrusted: control characters would steer a
// terminal, and other programs expect valid UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Packages/Format/Ascii.h"

// The length of the valid UTF-8 sequence at the start of `text`, or 0.
size_t SequenceLength(std::string_view text);
// Whether `text` is printable ASCII without two characters that are special in a format. Most texts are, and need no
// more work. May return false for a plain text, never true for another.
bool IsPlain(std::string_view text, char first = '\x7F', char second = '\x7F');
// The text without blanks at its end.
std::string_view Trimmed(std::string_view text);
// Appends `text` without blanks at its end. Invalid bytes become U+FFFD. Control characters, line separators and marks
// that change the direction of text become blanks.
void AppendPrintable(std::string& out, std::string_view text);
std::string Printable(std::string_view text);
// Appends `text` as the inside of a JSON string. Invalid bytes become U+FFFD, and what steers a terminal \uXXXX.
// Returns whether there were invalid bytes.
bool AppendJson(std::string& out, std::string_view text);
