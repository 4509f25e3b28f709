#include "Packages/Platform/ConfigFile.h"

// Opening a folder fails here, and pipes have no place in the file system. Who may write to the working folder of a
// privileged process is settled by the folder's own access list.
FILE* OpenConfigFile(const char* path) { return std::fopen(path, "r"); }
