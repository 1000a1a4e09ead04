# Provides PkgConfig::CPP_HTTPLIB, the HTTP server of `paptool serve`; not on Windows.
#
# pkg-config tells with which options the library was compiled: its header must be read with the same.
if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(CPP_HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
endif()
