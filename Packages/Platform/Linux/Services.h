// What the rest of this provider asks of the service control.
#pragma once

// Whether the service of that name is registered and running, for the user of this process.
bool IsServiceRunning(const char* name);
