# Toolchain file: Debian's cross compiler for arm64 (crossbuild-essential-arm64).
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(TAMZO_TRIPLET aarch64-linux-gnu)
set(TAMZO_EMULATOR qemu-aarch64-static)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
# Phones have pages of 4 or 16 KB; room for those of 64 KB would be a tenth of the library.
string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -Wl,-z,max-page-size=16384")
