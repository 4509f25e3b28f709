# Adds the resources of a Windows target: its version, and the manifest of a program. Does nothing on other systems.
# type  1 for a program, 2 for a library
function(quorlin_windows_resources target file_name type file_description)
  if(NOT WIN32)
    return()
  endif()
  set(file_type ${type})
  set(manifest)
  if(type EQUAL 1)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/program.manifest.in ${target}.manifest @ONLY)
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}.rc PROPERTIES
      OBJECT_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest)
    # Resource type 24 is a manifest, and number 1 that of a program.
    set(manifest "1 24 \"${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest\"")
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/resources.rc.in ${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()
