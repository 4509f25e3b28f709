#include "Sources/CrashReport.h"

void InstallCrashReport() {}
