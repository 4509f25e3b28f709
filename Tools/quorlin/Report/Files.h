// The files of the report's page, which the build compiles in.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

struct EmbeddedFile_t {
    std::string_view text;
    std::span<const uint8_t, 32> sha256;
};

EmbeddedFile_t ReportFile_html();
EmbeddedFile_t ReportFile_css();
EmbeddedFile_t ReportFile_js();
