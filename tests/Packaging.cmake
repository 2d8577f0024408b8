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

# Compiles each public header alone.
set_target_properties(tamzo_vast PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
