# The library as hosts meet it: a static and a shared one installed in one place and found as a
# package, put into a host's own shared library, added as a folder without libcurl; what each
# exports; and every installed header compiled alone.

set(stage ${CMAKE_CURRENT_BINARY_DIR}/stage)
set(consumer_options
  -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER} "-DCMAKE_CXX_FLAGS=${CMAKE_CXX_FLAGS}"
  "-DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}")
# For what compiles the library once more; some hosts compile everything in unity.
set(quick_build -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DCMAKE_UNITY_BUILD=ON)

# Builds a project and runs a command in its build folder.
function(tamzo_package_test name source)
  cmake_parse_arguments(PARSE_ARGV 2 test "" "NEEDS" "OPTIONS;COMMAND")
  if(NOT test_COMMAND)
    set(test_COMMAND ${CMAKE_CTEST_COMMAND} --output-on-failure)
  endif()
  add_test(NAME Package.${name}
    COMMAND ${CMAKE_CTEST_COMMAND}
      --build-and-test ${source} ${CMAKE_CURRENT_BINARY_DIR}/package/${name}
      --build-generator ${CMAKE_GENERATOR} --build-options ${consumer_options} ${test_OPTIONS}
      --test-command ${test_COMMAND})
  set_tests_properties(Package.${name} PROPERTIES FIXTURES_REQUIRED "${test_NEEDS}" TIMEOUT 1200)
endfunction()

add_test(NAME Package.installs
  COMMAND ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --prefix ${stage})
set_tests_properties(Package.installs PROPERTIES FIXTURES_SETUP stage)
tamzo_package_test(isFoundAndLinked ${CMAKE_CURRENT_SOURCE_DIR}/consumer NEEDS stage
  OPTIONS -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE} -DBUILD_SHARED_LIBS=${BUILD_SHARED_LIBS}
    -DCMAKE_PREFIX_PATH=${stage}
  COMMAND player)
tamzo_package_test(isAddedAsFolderWithoutCurl ${CMAKE_CURRENT_SOURCE_DIR}/consumer_folder
  OPTIONS ${quick_build} -DTAMZO_SOURCE=${PROJECT_SOURCE_DIR})
if(NOT BUILD_SHARED_LIBS)
  tamzo_package_test(staticGoesIntoABridge ${CMAKE_CURRENT_SOURCE_DIR}/consumer_bridge NEEDS stage
    OPTIONS -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE} -DCMAKE_PREFIX_PATH=${stage})
endif()

add_test(NAME Package.installsAlone
  COMMAND ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --prefix ${stage}-static)
set_tests_properties(Package.installsAlone PROPERTIES FIXTURES_SETUP static_stage)

# As an app carries it but for the optimising, with which scripts/size.sh builds it.
tamzo_package_test(sharedIsInstalled ${PROJECT_SOURCE_DIR}
  OPTIONS ${quick_build} -DBUILD_SHARED_LIBS=ON -DTAMZO_WITH_CURL=OFF
    -DTAMZO_BUILD_TESTS=OFF -DTAMZO_BUILD_TOOLS=OFF
  COMMAND ${CMAKE_COMMAND} --install . --prefix ${stage})
set_tests_properties(Package.sharedIsInstalled PROPERTIES FIXTURES_SETUP shared)
tamzo_package_test(sharedAsksNothingOfConsumers ${CMAKE_CURRENT_SOURCE_DIR}/consumer_shared
  NEEDS shared OPTIONS -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE} -DCMAKE_PREFIX_PATH=${stage}
  COMMAND player)
tamzo_package_test(sharedIsUsedFromCByPkgConfig ${CMAKE_CURRENT_SOURCE_DIR}/consumer_pkgconfig
  NEEDS shared OPTIONS -DKIND=shared -DCMAKE_PREFIX_PATH=${stage}
  COMMAND player)
tamzo_package_test(staticIsUsedFromCByPkgConfig ${CMAKE_CURRENT_SOURCE_DIR}/consumer_pkgconfig
  NEEDS static_stage OPTIONS -DKIND=static -DCMAKE_PREFIX_PATH=${stage}-static
  COMMAND player)
tamzo_package_test(sharedIsFoundByAProjectInC ${CMAKE_CURRENT_SOURCE_DIR}/consumer_c
  NEEDS shared OPTIONS -DKIND=shared -DCMAKE_PREFIX_PATH=${stage}
  COMMAND player)
tamzo_package_test(staticIsFoundByAProjectInC ${CMAKE_CURRENT_SOURCE_DIR}/consumer_c
  NEEDS static_stage OPTIONS -DKIND=static -DCMAKE_PREFIX_PATH=${stage}-static
  COMMAND player)
if(Python3_FOUND)
  add_test(NAME Package.standsAnywhere
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check-install.py
      ${CMAKE_COMMAND} ${PROJECT_BINARY_DIR})
  add_test(NAME Package.takesFoldersOfOthers
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check-install.py
      ${CMAKE_COMMAND} --configure ${PROJECT_SOURCE_DIR})
  if(NOT BUILD_SHARED_LIBS)
    add_test(NAME Package.commandsOfItsPageWork
      COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/run-packaging-commands.py
        ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR}/package/sharedIsInstalled)
    set_tests_properties(Package.commandsOfItsPageWork PROPERTIES FIXTURES_REQUIRED shared)
  endif()
  add_test(NAME Package.checkOfSymbolsFindsWhatIsWrong
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check-symbols.py --self-test)
  foreach(which public c)
    add_test(NAME Package.sharedExports.${which}
      COMMAND ${CMAKE_COMMAND} -E env NM=${CMAKE_NM}
        ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check-symbols.py ${which}
        ${stage}/${CMAKE_INSTALL_LIBDIR}/libtamzovast.so)
    set_tests_properties(Package.sharedExports.${which} PROPERTIES FIXTURES_REQUIRED shared)
  endforeach()
endif()

# Compiles each public header alone.
set_target_properties(tamzo_vast PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
