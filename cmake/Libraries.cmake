# Header-only libraries are in the host's include folder, which a cross build must not use as a whole. So the build tree
# gets a link to the one folder that is needed.
function(quorlin_header_only name folder)
  find_path(${name}_HOME ${folder} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
  file(CREATE_LINK ${${name}_HOME}/${folder} ${PROJECT_BINARY_DIR}/include/${folder} SYMBOLIC)
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/include)
endfunction()

quorlin_header_only(rapidjson rapidjson)
