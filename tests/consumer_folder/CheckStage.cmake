file(GLOB_RECURSE installed RELATIVE ${STAGE} ${STAGE}/*)
if(NOT installed STREQUAL EXPECTED)
  message(FATAL_ERROR "installed: ${installed}, not ${EXPECTED}")
endif()
