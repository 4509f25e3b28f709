// The decoders of types 221 and 222: firmware components, and a boot checkpoint.
#include <gtest/gtest.h>

#include "Tests/Support/Structures.h"

namespace {

const std::string kTitle = "Firmware Version Information {Type 221}#GROUPNAME=\n";

TEST(Type221, ListsComponents) {
    const struct {
        const char* what;
        ClStructureBuilder structure;
        std::string lines;
    } kCases[] = {
        {"no record",                                             ClStructureBuilder(221,                5), ""                         },
        {"parts padded with blanks",
         ClStructureBuilder(221,                                                                         26)
             .Byte(4,                                                        3)
             .Bytes(5,                                                               {1, 0, 1, 10, 0, 0x34, 0x12})
             .Bytes(12, {2, 1, 255, 0x10, 9, 0, 0})
             .Bytes(19, {1, 3, 0, 0, 0, 0xBC, 0x0A})
             .Strings({"Engine", "Microcode", "text"}),
         "Engine=  1. a. 0.1234\nMicrocode= ff.10. 9.   0\nEngine=  0. 0. 0. abc\n"},
        {"a disabled component",
         ClStructureBuilder(221,                  33)
             .Byte(4,                         4)
             .Bytes(5,                                                    {1, 0, 1, 1, 1, 1, 0})
             .Bytes(12, {2, 0, 2, 2, 2, 2, 0})
             .Bytes(19, {3, 0, 3, 3, 3, 3, 0})
             .Bytes(26, {4, 0, 4, 4, 4, 4, 0})
             .Strings({"Disabled", "disabled", "Disabled ", "Enabled"}),
         "disabled=  2. 2. 2.   2\nDisabled =  3. 3. 3.   3\nEnabled=  4. 4. 4.   4\n"},
        {"name numbers 0 and out of range",
         ClStructureBuilder(221,                                                    19)
             .Byte(4,                                  2)
             .Bytes(5,                                        {0, 0, 1, 1, 1, 1, 0})
             .Bytes(12, {2, 0, 2, 2, 2, 2, 0})
             .Strings({"one"}),
         "one=  1. 1. 1.   1\n(no such string)=  2. 2. 2.   2\n"},
        {"no strings",                                  ClStructureBuilder(221, 12).Byte(4,                      1).Bytes(5,                                                 {5, 0, 1, 1, 1, 1, 0}),
         "(null string)=  1. 1. 1.   1\n"},
        {"a count past the formatted area",
         ClStructureBuilder(221,                                                    18)
             .Byte(4,                                  255)
             .Bytes(5,                                        {1, 0, 1, 1, 1, 1, 0})
             .Bytes(12, {1, 0, 2, 2, 2, 2})
             .Strings({"one"}),
         "one=  1. 1. 1.   1\n"},
        {"no count", ClStructureBuilder(221,                                      4).Strings({"\x01\x01\x01\x01\x01\x01\x01\x01"}),                             ""},
    };
    for (const auto& c : kCases) EXPECT_EQ(Decode(c.structure).Lines(), kTitle + c.lines) << c.what;
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
    EXPECT_EQ(shorter.Text("Revision"), "2");
    EXPECT_EQ(shorter.Text("IO Port"), "0X0");
    EXPECT_EQ(shorter.Text("Checkpoint Description"), "(null string)");
    EXPECT_EQ(Decode(ClStructureBuilder(222, 9).Word(5, 0xABCD)).Text("IO Port"), "0XABCD");
}

}  // namespace
