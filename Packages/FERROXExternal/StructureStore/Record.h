// Recorded machines: folders that `quorlin record` writes (Docs/Record.md). For this tree only: not installed.
#pragma once

#include <string>

#include "Packages/FERROXExternal/FERROXLib/RecordedHardware.h"
#include "Packages/FERROXExternal/StructureStore/ImageFile.h"

struct Record_t {
    RecordedHardware_t hardware;
    Image_t table;  // empty if it wasn't recorded
};

// Reads the record in a folder, and checks its files against their hashes. The path is UTF-8.
// Status  1; 5: `error` says what is wrong and what to try, without the folder's name. Throws std::bad_alloc.
status_t ReadRecord(const std::string& folder, Record_t* record, std::string* error);

// Why the store finds no table in a record, and what to try.
std::string WhyNoTable(const Record_t& record);

// Sets the machine of package and store to a record, which must outlive its use, and leaves the hardware library alone.
// Status  1; 5 the store is up
status_t SetRecordedMachine(const Record_t& record);

// As SetReplayMachine, with `error` as above.
status_t ReplayRecord(const std::string& folder, std::string* error);
// What SetReplayMachine or ReplayRecord chose last; null for this machine.
const Record_t* ReplayedRecord();
