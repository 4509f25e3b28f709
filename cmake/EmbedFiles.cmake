# Writes a source file that holds other files as plain arrays, and their SHA-256. Run by the build:
# cmake -D "FILES=PATH;..." -D OUT=PATH -P EmbedFiles.cmake
set(source "// Made by cmake/EmbedFiles.cmake.\n#include \"Tools/quorlin/Report/Files.h\"\n\n")
foreach(path IN LISTS FILES)
  cmake_path(GET path EXTENSION LAST_ONLY name)
  string(REPLACE "." "" name "${name}")
  file(READ "${path}" bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  file(SHA256 "${path}" hash)
  string(REGEX REPLACE "(..)" "0x\\1," hash "${hash}")
  string(APPEND source "static constexpr char ${name}[] = {${bytes}};\n"
    "static constexpr uint8_t ${name}Hash[] = {${hash}};\n"
    "EmbeddedFile_t ReportFile_${name}() { return {{${name}, sizeof ${name}}, ${name}Hash}; }\n")
endforeach()
file(WRITE "${OUT}" "${source}")
