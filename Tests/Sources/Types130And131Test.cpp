// The decoders of types 130 and 131: the remote management feature and the firmware engine behind it.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

TEST(Type130, ShowsTheFeature) {
    ClStructureBuilder structure(130, 19);
    structure.Dword(4, 2).Bytes(8, {1, 1, 2, 1, 255}).Bytes(14, {0x3E, 2, 0xC0, 0, 1}).Strings({"first", "\x01QX"});
    ExpectItems(structure, "Lumetra QXM Components Information {Type 130}",
                "QXM Signature=\x01QX\nLumetra(R) QXM Capability Status=This platform is QXM capable\n"
                "Lumetra QXM Feature Status=Enabled\n"
                "Lumetra SRoU(Storage Redirection over USB) Feature Status=Disabled\n"
                "Lumetra SoL(Serial Over LAN) Feature Status=Enabled\nNetwork Interface Status=Disabled\n"
                "BIOS Re-flash=Supported\nBIOS Setup=BIOS boot into setup screen is supported\n"
                "BIOS Pause=BIOS pause before booting operating system is supported\n"
                "Floppy Boot=BIOS does not support boot from Floppy device\n"
                "CD/DVD Boot=BIOS does not support boot from CD/DVD device\n"
                "Location=VT100+ (Added function keys F5~F14)\nRemote Secure Erase=Remote Secure Erase supported\n"
                "BIOS Secure Boot Capability=BIOS Secure Boot supported\nKVM Redirection Status=Enabled\n");
}

TEST(Type131, ShowsTheEngineAndItsDevices) {
    ClStructureBuilder structure(131, 53);
    structure.Byte(4, 0x12).Word(8, 1).Word(10, 2).Word(12, 3).Word(14, 65535).Dword(16, 0x12AB00FA);
    structure.Dword(24, 0x8009).Word(28, 11).Word(30, 0).Word(32, 0).Word(34, 1234).Dword(40, 0x80861C05);
    structure.Dword(46, 0x12AB00FA).Byte(52, 0x22);
    ExpectItems(
        structure, "Lumetra Corvex Information {Type 131}",
        "PVE Enabled State=Disabled\nTSE Enabled State=Enabled\nNRT Capability=Disabled\nPVE Capability=Enabled\n"
        "CVXBX Version=1.2.3.65535\nPCI Device Function Number=0x2\nPCI Device Number=0x1F\n"
        "PCI Device Bus Number=0x0\nDevice Identification Number(DID)=0x12AB0000\n"
        "Lumetra(R) Corvex Enable Status=Enabled\nLumetra(R) QXM Enable Status=Enabled\n"
        "Lumetra(R) Tessary Enable Status=Disabled\nKVM Supported Status=Not Supported\n"
        "Local Wakeup Timer Supported Status=Supported\nLumetra (R) Corvex FW Version=11.0.0.1234\n"
        "Wired NIC PCI Device Function Number=0x5\nWired NIC PCI Device Number=0x0\n"
        "Wired NIC PCI Device Bus Number=0x1C00\nWired NIC Device Identification Number(DID)=0x80860000\n"
        "Wireless NIC PCI Device Function Number=0x2\nWireless NIC PCI Device Number=0xF8\n"
        "Wireless NIC PCI Device Bus Number=0x0\nWireless NIC Device Identification Number(DID)=0x12AB0000\n"
        "PV-b support status in BIOS setup screen=Supported\n"
        "NRT support status in BIOS setup screen=Not Supported\n"
        "PV-a support status in BIOS setup screen=Supported\n");
}

}  // namespace
