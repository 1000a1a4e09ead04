# Provides GTest::gtest, GTest::gtest_main, GTest::gmock and GTest::gmock_main for the tests.
#
# A native build takes the compiled libraries (Debian: libgtest-dev, libgmock-dev). A cross build
# compiles them from the sources that Debian's package "googletest" puts into /usr/src/googletest.
include(GoogleTest)

if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  return()
endif()

set(ORVPAP_GOOGLETEST_SOURCES "/usr/src/googletest" CACHE PATH "Sources of GoogleTest")
if(NOT EXISTS "${ORVPAP_GOOGLETEST_SOURCES}/CMakeLists.txt")
  message(FATAL_ERROR "GoogleTest's sources are missing; run tools/install-dependencies.sh windows.")
endif()
set(INSTALL_GTEST OFF)
add_subdirectory("${ORVPAP_GOOGLETEST_SOURCES}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)

# The first start of a Wine installation takes longer than CTest waits for a program's list of tests.
set(_wine_ready "${CMAKE_BINARY_DIR}/wine/ready")
add_custom_command(OUTPUT "${_wine_ready}"
  COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} cmd /c exit
  COMMENT "Preparing Wine" VERBATIM)
add_custom_target(wine_prefix ALL DEPENDS "${_wine_ready}")
