# The options of every target, which gets them by linking quorlin_flags.
add_library(quorlin_flags INTERFACE)
target_compile_options(quorlin_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Werror
  -fstack-protector-strong
  # Every build folder gives the same bytes.
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")

# Touches stack pages in order, and marks the targets of indirect jumps. Windows has its own forms.
if(NOT WIN32)
  target_compile_options(quorlin_flags INTERFACE -fstack-clash-protection
    $<IF:$<STREQUAL:${QUORLIN_ARCHITECTURE},Arm64>,-mbranch-protection=standard,-fcf-protection>)
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(quorlin_flags INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
if(QUORLIN_SANITIZE)
  target_compile_options(quorlin_flags INTERFACE
    -fsanitize=${QUORLIN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_definitions(quorlin_flags INTERFACE QUORLIN_SANITIZED)
  target_link_options(quorlin_flags INTERFACE -fsanitize=${QUORLIN_SANITIZE})
endif()
if(QUORLIN_FUZZ)
  # Records the coverage that guides a fuzzer. The fuzzing engine is linked into each fuzzer.
  target_compile_options(quorlin_flags INTERFACE -fsanitize=fuzzer-no-link
    -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/Fuzz/Ignored.txt)
endif()

# For classes that no host sees, and that nothing casts by their type: their type information is only relocations at
# start-up. The sanitizers need it.
if(NOT QUORLIN_SANITIZE)
  set(quorlin_without_rtti -fno-rtti)
endif()

if(WIN32)
  # The library must not depend on MinGW's own DLLs.
  target_link_options(quorlin_flags INTERFACE -static -fstack-protector-strong
    -Wl,--dynamicbase,--nxcompat,--high-entropy-va -Wl,--no-insert-timestamp)
  # The linker strips the file. The strip program would write the time into it.
  target_link_options(quorlin_flags INTERFACE $<$<CONFIG:Release>:-s>)
else()
  target_link_options(quorlin_flags INTERFACE -Wl,-z,relro,-z,now)
endif()
