// Firmware's text on its way to people and to other programs. It is untrusted: control characters would steer a
// terminal, and other programs expect valid UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The length of the valid UTF-8 sequence at the begin of `text`, or 0.
size_t SequenceLength(std::string_view text);
// Whether there is nothing but printable ASCII, and neither of two characters that a format gives a meaning. True for
// most texts, so that they are taken as they are. A text may be judged too strictly, never too leniently.
bool IsPlain(std::string_view text, char first = '\x7F', char second = '\x7F');
// Without the blanks at its end, which say nothing.
std::string_view Trimmed(std::string_view text);
// Adds `text` with invalid bytes as U+FFFD, without the blanks at its end. What steers a terminal becomes a blank:
// control characters, line separators, and the marks that change the direction of text.
void AppendPrintable(std::string& out, std::string_view text);
std::string Printable(std::string_view text);
// Adds `text` as the inside of a JSON string: invalid bytes as U+FFFD, and what steers a terminal as \uXXXX. Whether
// there were invalid bytes.
bool AppendJson(std::string& out, std::string_view text);

// ASCII letters alike, whatever their case.
bool EqualsIgnoringCase(std::string_view first, std::string_view second);
bool ContainsIgnoringCase(std::string_view text, std::string_view part);

// A handle as the standard's tables write it: 0011h.
std::string HandleText(uint16_t handle);
