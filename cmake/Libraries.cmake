# Header-only libraries live in the host's include folder, which a cross build must not see as a whole: a link to the
# one folder that is wanted goes into the build tree.
function(quorlin_header_only name folder)
  find_path(${name}_HOME ${folder} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
  file(CREATE_LINK ${${name}_HOME}/${folder} ${PROJECT_BINARY_DIR}/include/${folder} SYMBOLIC)
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/include)
endfunction()

quorlin_header_only(rapidjson rapidjson)
