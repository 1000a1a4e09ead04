# Compiles through ccache where it is installed, so that a repeated build in a fresh folder is quick:
# paths below the project are made relative, and the folder itself does not count.
find_program(ORVPAP_CCACHE ccache)
mark_as_advanced(ORVPAP_CCACHE)
if(ORVPAP_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
    "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=true "${ORVPAP_CCACHE}")
endif()
