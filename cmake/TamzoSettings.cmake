# How this project's own code is compiled. Hosts get none of it.
add_library(tamzo_settings INTERFACE)

if(TAMZO_DEVELOPER)
  target_compile_options(tamzo_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # g++ 12 sees overlaps and overflows in string concatenation that are none (GCC bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-stringop-overflow>)
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
