# How this project's own code is compiled. Hosts get none of it.
add_library(tamzo_settings INTERFACE)

if(TAMZO_DEVELOPER)
  target_compile_options(tamzo_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # g++ 12 sees overlaps and overflows in string concatenation that are none (GCC bug 105651).
    "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict;\
-Wno-stringop-overflow;-Wno-array-bounds>")
endif()
if(TAMZO_SANITIZE)
  target_compile_options(tamzo_settings INTERFACE
    -fsanitize=${TAMZO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  target_link_options(tamzo_settings INTERFACE -fsanitize=${TAMZO_SANITIZE})
  # The address of a Thumb function is odd, which g++ takes for misaligned.
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^armv7")
    target_compile_options(tamzo_settings INTERFACE -marm)
  endif()
endif()
if(TAMZO_COVERAGE)
  # Tests run threads, whose counts must not overtake each other.
  target_compile_options(tamzo_settings INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(tamzo_settings INTERFACE --coverage)
endif()

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_CXX_EXTENSIONS OFF)
if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()

# Linkers of ELF name what a library exports, and leave out code that nothing reaches.
include(CheckLinkerFlag)
check_linker_flag(CXX LINKER:--gc-sections TAMZO_LINKER_COLLECTS_SECTIONS)
check_linker_flag(CXX LINKER:--version-script=${CMAKE_CURRENT_LIST_DIR}/exports.map
  TAMZO_LINKER_TAKES_VERSION_SCRIPTS)
check_linker_flag(CXX LINKER:--exclude-libs,libtamzovast.a TAMZO_LINKER_EXCLUDES_LIBRARIES)
# Within the library, calls of what it exports go straight there, and what it calls elsewhere is
# known before the first call, in memory that nobody writes to after that.
check_linker_flag(CXX LINKER:-Bsymbolic-functions TAMZO_LINKER_BINDS_FUNCTIONS)
check_linker_flag(CXX LINKER:-z,relro,-z,now TAMZO_LINKER_BINDS_AT_LOAD)
# Addresses within the library take a bit each in its table instead of 24 bytes, where the loader of
# the system knows of it: that of glibc 2.36.
include(CheckCXXSourceCompiles)
check_linker_flag(CXX LINKER:-z,pack-relative-relocs TAMZO_LINKER_PACKS_RELOCATIONS)
check_cxx_source_compiles("#include <features.h>
  #if !__GLIBC_PREREQ(2, 36)
  #error
  #endif
  int main() {}" TAMZO_LOADER_KNOWS_PACKED_RELOCATIONS)

# The shared library that an app carries. Objects in a static one must do for any linker.
include(CheckIPOSupported)
check_ipo_supported(RESULT TAMZO_OPTIMISES_AT_LINK_TIME OUTPUT ignored LANGUAGES CXX)

# Exports the public classes. Templates of the standard library that the library's code is made of
# are visible wherever they are compiled; the version script keeps them inside.
function(tamzo_shared target)
  target_compile_definitions(${target} PUBLIC TAMZO_SHARED)
  set_property(TARGET ${target} PROPERTY
    INTERPROCEDURAL_OPTIMIZATION_MINSIZEREL ${TAMZO_OPTIMISES_AT_LINK_TIME})
  if(TAMZO_LINKER_TAKES_VERSION_SCRIPTS)
    set(script ${PROJECT_SOURCE_DIR}/cmake/exports.map)
    target_link_options(${target} PRIVATE LINKER:--version-script=${script})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
  endif()
  if(TAMZO_LINKER_COLLECTS_SECTIONS)
    target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections)
    target_link_options(${target} PRIVATE LINKER:--gc-sections)
  endif()
  if(TAMZO_LINKER_BINDS_FUNCTIONS)
    target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
  endif()
  if(TAMZO_LINKER_BINDS_AT_LOAD)
    target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now)
  endif()
  if(TAMZO_LINKER_PACKS_RELOCATIONS AND TAMZO_LOADER_KNOWS_PACKED_RELOCATIONS)
    target_link_options(${target} PRIVATE
      $<$<CONFIG:MinSizeRel>:LINKER:-z,pack-relative-relocs>)
  endif()
  # g++ sees more of what is alike in one piece than in several.
  target_link_options(${target} PRIVATE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:MinSizeRel>>:-flto-partition=one>)
endfunction()

# Exports nothing from the host's own shared library either, those templates included.
function(tamzo_static target)
  if(TAMZO_LINKER_EXCLUDES_LIBRARIES)
    target_link_options(${target} INTERFACE LINKER:--exclude-libs,libtamzovast.a)
  endif()
  if(TAMZO_LINKER_COLLECTS_SECTIONS)
    target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections)
  endif()
endfunction()
