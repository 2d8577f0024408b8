# The library as hosts meet it: installed and found as a package, added as a folder without
# libcurl, and every installed header compiled alone.

set(stage ${CMAKE_CURRENT_BINARY_DIR}/stage)
set(consumer_options
  -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE} -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}
  "-DCMAKE_CXX_FLAGS=${CMAKE_CXX_FLAGS}")

add_test(NAME Package.installs
  COMMAND ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --prefix ${stage})
set_tests_properties(Package.installs PROPERTIES FIXTURES_SETUP stage)
add_test(NAME Package.isFoundAndLinked
  COMMAND ${CMAKE_CTEST_COMMAND}
    --build-and-test ${CMAKE_CURRENT_SOURCE_DIR}/consumer ${CMAKE_CURRENT_BINARY_DIR}/consumer
    --build-generator ${CMAKE_GENERATOR}
    --build-options ${consumer_options} -DCMAKE_PREFIX_PATH=${stage}
    --test-command player)
set_tests_properties(Package.isFoundAndLinked PROPERTIES FIXTURES_REQUIRED stage TIMEOUT 300)

add_test(NAME Package.isAddedAsFolderWithoutCurl
  COMMAND ${CMAKE_CTEST_COMMAND}
    --build-and-test ${CMAKE_CURRENT_SOURCE_DIR}/consumer_folder
      ${CMAKE_CURRENT_BINARY_DIR}/consumer_folder
    --build-generator ${CMAKE_GENERATOR}
    --build-options ${consumer_options} -DTAMZO_SOURCE=${PROJECT_SOURCE_DIR}
    --test-command player)
set_tests_properties(Package.isAddedAsFolderWithoutCurl PROPERTIES TIMEOUT 600)

set(header_sources "")
foreach(layer xml sdk vast)
  tamzo_public_headers(${layer} headers)
  list(FILTER headers INCLUDE REGEX "\\.h$")
  list(APPEND public_headers ${headers})
endforeach()
foreach(path IN LISTS public_headers)
  file(RELATIVE_PATH header ${PROJECT_SOURCE_DIR} ${path})
  string(MAKE_C_IDENTIFIER ${header} name)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cc)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n#include \"${header}\"\n")
  list(APPEND header_sources ${source})
endforeach()
add_library(tamzo_headers_alone OBJECT ${header_sources})
target_link_libraries(tamzo_headers_alone PRIVATE TamzoVast::TamzoVast tamzo_settings)
