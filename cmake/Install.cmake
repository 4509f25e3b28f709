# The installation, in three components that are also the Debian packages: library (the shared library), development
# (headers, link library, pkg-config and CMake files, quorlin(3)) and tools (the program).
#
# include/quorlin has the headers in the folders of this tree, so that their includes work. The two that a program
# includes are at the top: <quorlin/quorlin_c.h> and <quorlin/Quorlin.h>.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(quorlin_package_headers
  Packages/Container/Container.h
  Packages/Debug/Debug.h
  Packages/FERROXExternal/FERROXLib/FERROXLib.h
  Packages/FERROXExternal/FERROXLib/Sources/Protocol.h
  Packages/FERROXExternal/StructureStore/Machine.h
  Packages/FERROXExternal/StructureStore/StructureStore.h
  Packages/OS/Export.h
  Packages/OS/OS.h
  Packages/OS/OSServices.h
  Packages/OS/Status.h)
set(headers_to ${CMAKE_INSTALL_INCLUDEDIR}/quorlin)
install(FILES Sources/Quorlin.h CInterface/quorlin_c.h DESTINATION ${headers_to} COMPONENT development)
foreach(header IN LISTS quorlin_package_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${headers_to}/${folder} COMPONENT development)
endforeach()

install(TARGETS quorlin EXPORT QuorlinTargets
  RUNTIME COMPONENT library
  LIBRARY COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${headers_to})
install(TARGETS quorlin_program RUNTIME COMPONENT tools)

set(cmake_to ${CMAKE_INSTALL_LIBDIR}/cmake/Quorlin)
install(EXPORT QuorlinTargets NAMESPACE Quorlin:: DESTINATION ${cmake_to} COMPONENT development)
configure_package_config_file(cmake/QuorlinConfig.cmake.in ${PROJECT_BINARY_DIR}/QuorlinConfig.cmake
  INSTALL_DESTINATION ${cmake_to})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuorlinConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuorlinConfig.cmake ${PROJECT_BINARY_DIR}/QuorlinConfigVersion.cmake
  DESTINATION ${cmake_to} COMPONENT development)

# The prefix relative to the file, so that an installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" prefix_from_pc ${prefix_from_pc})
configure_file(cmake/quorlin.pc.in ${PROJECT_BINARY_DIR}/quorlin.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quorlin.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(NOT WIN32)
  install(FILES Docs/quorlin.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES Docs/quorlin.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT development)
  set(QUORLIN_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    CACHE STRING "Where zsh looks for completions")
  set(completions ${PROJECT_BINARY_DIR}/completions)
  install(FILES ${completions}/quorlin.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME quorlin COMPONENT tools)
  install(FILES ${completions}/quorlin.zsh DESTINATION ${QUORLIN_ZSH_COMPLETIONS} RENAME _quorlin COMPONENT tools)
  install(FILES ${completions}/quorlin.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT tools)
endif()
