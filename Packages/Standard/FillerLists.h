// The lists that IsFiller goes by.
#pragma once

#include <cstddef>

inline constexpr size_t kLongestFiller = 28;

// Texts that firmware is delivered with, and that nobody replaced. In lower case, without blanks around them.
inline constexpr char kFillers[][kLongestFiller] = {
    "/ / /",
    "[empty]",
    "asset tag",
    "asset-1234567890",
    "base board asset tag",
    "base board serial number",
    "board serial number",
    "board version",
    "chassis asset tag",
    "chassis manufacture",
    "chassis manufacturer",
    "chassis serial number",
    "chassis version",
    "default",
    "default string",
    "empty",
    "fill by oem",
    "filled by oem",
    "invalid",
    "n/a",
    "na",
    "no asset information",
    "no asset tag",
    "no dimm",
    "no enclosure",
    "none",
    "not applicable",
    "not available",
    "not defined",
    "not provided",
    "not specified",
    "null",
    "o.e.m.",
    "oem",
    "oem chassis manufacturer",
    "oem chassis serial number",
    "product name",
    "product_line",
    "product_sku",
    "serial number",
    "sku",
    "system asset tag",
    "system manufacturer",
    "system name",
    "system product name",
    "system serial number",
    "system sku",
    "system version",
    "tbd",
    "tobefilledbyo.e.m.",
    "type1family",
    "type1productconfigid",
    "type1sku",
    "undefined",
    "unknown",
    "unspecified",
    "x.x",
};

// Begins of such texts.
inline constexpr char kFillerBegins[][kLongestFiller] = {"to be filled by", "be filled by o.e.m.", "type2 - board ",
                                                         "sku=notprovided"};

// Texts that come with a number after them, such as "SerNum00".
inline constexpr char kNumberedFillers[][kLongestFiller] = {
    "array_partnumber", "assettagnum", "manufacturer", "modulepartnumber", "partnum", "sernum",
};

// Characters of which a text is a filler if it has nothing else; and those that are fillers alone.
inline constexpr char kRepeatedFillers[] = "0fx.-*?_#";
inline constexpr char kLoneFillers[] = ".-*?_#";
