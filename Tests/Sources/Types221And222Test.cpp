// The decoders of types 221 and 222: firmware components, and a boot checkpoint.
#include <gtest/gtest.h>

#include "Tests/Support/Structures.h"

namespace {

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
