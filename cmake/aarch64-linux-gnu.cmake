# Cross build for Linux on ARM64 with Debian's compiler. cmake/arm64-packages.sh unpacks the libraries into a folder.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
cmake_path(SET CMAKE_FIND_ROOT_PATH NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-packages)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# The build runs programs of its own, which write completions. Here they need the compiler's libraries only.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L /usr/aarch64-linux-gnu
  CACHE STRING "Runs programs that were built, with the folder that has the libraries they need")
