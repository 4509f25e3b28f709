// The device of the driver service Ravelink: its 19 requests, served from the kernel's own interfaces.
//
//   memory           /dev/mem, mapped; where the kernel refuses PCI configuration space there, sysfs
//   ports            ioperm, in and out
//   MSRs             /dev/cpu/N/msr
//   CPUID            the instruction, on the processor asked for
//   PCI registers    /sys/bus/pci/devices/SSSS:BB:DD.F/config
//
// Opening needs no rights; each request that needs some fails with error 5 without them.
#pragma once

#include "Packages/Platform/Linux/Handles.h"

// Whether `path` names the device.
bool IsDevicePath(const char* path);

// CreateFileA for the device: INVALID_HANDLE_VALUE with error 2 unless its service is running.
HANDLE OpenDevice(DWORD access);
