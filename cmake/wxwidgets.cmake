# Provides wx_toolkit, the window toolkit of platform/wx, and ORVPAP_WINDOWS, whether it is there; not in
# a cross build.
set(ORVPAP_WINDOWS OFF)
if(CMAKE_CROSSCOMPILING)
  return()
endif()

find_package(wxWidgets 3.2 REQUIRED COMPONENTS core base)
set(ORVPAP_WINDOWS ON)
add_library(wx_toolkit INTERFACE)
# As the system's: what warns in its headers is not ours.
target_include_directories(wx_toolkit SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
target_compile_definitions(wx_toolkit INTERFACE ${wxWidgets_DEFINITIONS})
target_compile_options(wx_toolkit INTERFACE ${wxWidgets_CXX_FLAGS})
target_link_directories(wx_toolkit INTERFACE ${wxWidgets_LIBRARY_DIRS})
target_link_libraries(wx_toolkit INTERFACE ${wxWidgets_LIBRARIES})
