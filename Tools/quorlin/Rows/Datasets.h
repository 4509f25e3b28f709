// The datasets of the row form: what each is called, and its columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Datasets of structures have the number of their type. Types 126 and 127 have none.
enum Dataset_t : size_t { kMachines = 126, kStrings, kFindings, kRejects, kDatasets };

// Whether the structures of a type have a dataset.
bool HasDataset(uint8_t type);
// All datasets, in the order of columns.csv.
std::vector<size_t> AllDatasets();
// In snake_case, such as "memory_device".
std::string NameOfDataset(size_t dataset);

enum class ColumnType_t : uint8_t { kText, kInteger, kUnsigned };
// Its SQL name, such as "BIGINT".
std::string_view SqlName(ColumnType_t type);

struct DatasetColumn_t {
    std::string name;
    ColumnType_t type;
};
// All columns of a dataset. Those of structures are record, handle, instance, and then their facts outside lists and
// the lists, in the order of the type's table.
std::vector<DatasetColumn_t> ColumnsOf(size_t dataset);
inline constexpr size_t kColumnsBeforeFacts = 3;
