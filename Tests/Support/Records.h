// Recorded machines, for tests of their replay.
#pragma once

#include <string>
#include <vector>

#include "Packages/FERROXExternal/FERROXLib/RecordedHardware.h"

// A machine with two processors, whose leaf 4 has sub-leaves, a chassis by "Nord", tables named FACP and SSDT (twice),
// two PCI functions, and some registers.
struct TestRecord_t {
    std::vector<uint8_t> table;
    RecordedHardware_t hardware;
    TestRecord_t();
};

// Writes the record into a new folder of the test's, "record-" and the suffix, in place of an older one. Returns its
// path. A list that is empty has no file.
std::string WriteRecord(const std::string& suffix, TestRecord_t record = {});
