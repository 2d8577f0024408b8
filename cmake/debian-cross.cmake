# What the toolchain files of Debian's cross compilers have in common. TAMZO_SYSROOT is a folder that
# scripts/sysroot.sh filled; libc and libstdc++ are the compiler's own.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${TAMZO_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${TAMZO_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${TAMZO_TRIPLET})
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TAMZO_SYSROOT)

# Libraries are those of the sysroot; what is headers alone may be the machine's.
set(CMAKE_FIND_ROOT_PATH ${TAMZO_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(ENV{PKG_CONFIG_LIBDIR} ${TAMZO_SYSROOT}/usr/lib/${TAMZO_TRIPLET}/pkgconfig)

set(library_path
  ${TAMZO_SYSROOT}/usr/lib/${TAMZO_TRIPLET}:${TAMZO_SYSROOT}/lib/${TAMZO_TRIPLET})
string(REPLACE ":" ",-rpath-link," rpath_link ${library_path})
foreach(kind EXE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-Wl,-rpath-link,${rpath_link}")
endforeach()
set(CMAKE_CROSSCOMPILING_EMULATOR
  ${TAMZO_EMULATOR} -L /usr/${TAMZO_TRIPLET} -E LD_LIBRARY_PATH=${library_path})
