# Provides CLI11::CLI11, the header-only parser of paptool's command line.
#
# A cross build sees a link to that one folder of headers, never the build machine's /usr/include.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 REQUIRED)
  return()
endif()

set(ORVPAP_CLI11_HEADERS "/usr/include/CLI" CACHE PATH "CLI11's headers")
if(NOT EXISTS "${ORVPAP_CLI11_HEADERS}/CLI.hpp")
  message(FATAL_ERROR "CLI11's headers are missing; run tools/install-dependencies.sh windows.")
endif()
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/cli11")
file(CREATE_LINK "${ORVPAP_CLI11_HEADERS}" "${CMAKE_BINARY_DIR}/cli11/CLI" SYMBOLIC)
add_library(CLI11::CLI11 INTERFACE IMPORTED)
target_include_directories(CLI11::CLI11 SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/cli11")
