# Gives a Windows target its version resource; does nothing elsewhere.
# type  1 for a program, 2 for a library
function(quorlin_version_resource target file_name type file_description)
  if(NOT WIN32)
    return()
  endif()
  set(file_type ${type})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()
