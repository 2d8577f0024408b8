# Toolchain file: Debian's cross compiler for armhf (crossbuild-essential-armhf).
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(TAMZO_TRIPLET arm-linux-gnueabihf)
set(TAMZO_EMULATOR qemu-arm-static)
# How std::map's iterators are passed changed with GCC 7; nothing here is older.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
