// The decoders of the vendor-defined types but for 148: remote management, its firmware engine, firmware components, a
// boot checkpoint.
#include <gtest/gtest.h>

#include "Tests/Support/Structures.h"

namespace {

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

// Expects these lines below the title of a structure that counts this many records.
void ExpectComponents(const char* what, uint8_t count, const ClStructureBuilder& structure, const std::string& lines) {
    EXPECT_EQ(Decode(ClStructureBuilder(structure).Byte(4, count)).Lines(),
              "Firmware Version Information {Type 221}#GROUPNAME=\n" + lines)
        << what;
}

TEST(Type221, ListsComponents) {
    ExpectComponents("parts padded with blanks", 3,
                     ClStructureBuilder(221, 26)
                         .Bytes(5, {1, 0, 1, 10, 0, 0x34, 0x12})
                         .Bytes(12, {2, 1, 255, 0x10, 9, 0, 0})
                         .Bytes(19, {1, 3, 0, 0, 0, 0xBC, 0x0A})
                         .Strings({"Engine", "Microcode", "text"}),
                     "Engine=  1. a. 0.1234\nMicrocode= ff.10. 9.   0\nEngine=  0. 0. 0. abc\n");
    ExpectComponents("a disabled component", 4,
                     ClStructureBuilder(221, 33)
                         .Bytes(5, {1, 0, 1, 1, 1, 1, 0})
                         .Bytes(12, {2, 0, 2, 2, 2, 2, 0})
                         .Bytes(19, {3, 0, 3, 3, 3, 3, 0})
                         .Bytes(26, {4, 0, 4, 4, 4, 4, 0})
                         .Strings({"Disabled", "disabled", "Disabled ", "Enabled"}),
                     "disabled=  2. 2. 2.   2\nDisabled =  3. 3. 3.   3\nEnabled=  4. 4. 4.   4\n");
    const ClStructureBuilder two = ClStructureBuilder(221, 19).Bytes(5, {0, 0, 1, 1, 1, 1, 0}).Bytes(12, {2});
    ExpectComponents("name numbers 0 and out of range", 2, ClStructureBuilder(two).Strings({"one"}),
                     "one=  1. 1. 1.   1\n(no such string)=  0. 0. 0.   0\n");
    ExpectComponents("no strings", 1, two, "(null string)=  1. 1. 1.   1\n");
    ExpectComponents("no record", 0, two, "");
    ExpectComponents("a count past the formatted area", 255,
                     ClStructureBuilder(221, 18).Bytes(5, {1, 0, 1, 1, 1, 1, 0, 1, 0, 2}).Strings({"one"}),
                     "one=  1. 1. 1.   1\n");
    EXPECT_EQ(Decode(ClStructureBuilder(221, 4).Strings({"\x01\x01\x01\x01\x01\x01\x01\x01"})).Count(), 1u);
}

TEST(Type222, ShowsTheCheckpoint) {
    const ClStructureBuilder structure =
        ClStructureBuilder(222, 9).Bytes(4, {1, 0x80, 0, 255, 7}).Strings({"\x01memory", "second"});
    EXPECT_EQ(Decode(std::vector{structure, structure}).Lines(),
              "Sarvine Technology {Type 222}#GROUPNAME=\nRevision=1\nIO Port=0X80\nCount=255\nCheckpoint=7\n"
              "Checkpoint Description=\x01memory\n"
              "Sarvine Technology {Type 222}_2#GROUPNAME=\nRevision=1\nIO Port=0X80\nCount=255\nCheckpoint=7\n"
              "Checkpoint Description=\x01memory\n");
    const ClItems shorter = Decode(ClStructureBuilder(222, 6).Bytes(4, {2, 0x80}));
    EXPECT_EQ(shorter.Text("Checkpoint Description"), "(null string)");
}

}  // namespace
