# Provides wx_toolkit, the window toolkit of platform/wx.
#
# A cross build takes what tools/build-wx-windows.sh made; a native Windows build what a package
# manager offers to CMake; others ask the system's wx-config.
add_library(wx_toolkit INTERFACE)

if(WIN32 AND NOT CMAKE_CROSSCOMPILING)
  find_package(wxWidgets 3.2 CONFIG REQUIRED)
  target_link_libraries(wx_toolkit INTERFACE wx::core wx::base)
  return()
endif()

if(CMAKE_CROSSCOMPILING)
  execute_process(COMMAND "${PROJECT_SOURCE_DIR}/tools/build-wx-windows.sh" --folder
    OUTPUT_VARIABLE _wx_folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  list(APPEND CMAKE_FIND_ROOT_PATH "${_wx_folder}")
  set(wxWidgets_CONFIG_EXECUTABLE "${_wx_folder}/bin/wx-config" CACHE FILEPATH "" FORCE)
endif()
find_package(wxWidgets 3.2 REQUIRED COMPONENTS core base)

# Whether a program has a console is said by the program.
list(FILTER wxWidgets_LIBRARIES EXCLUDE REGEX "^(-mwindows|-Wl,--subsystem,windows)$")

# As the system's: what warns in its headers is not ours.
target_include_directories(wx_toolkit SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
target_compile_definitions(wx_toolkit INTERFACE ${wxWidgets_DEFINITIONS})
target_compile_options(wx_toolkit INTERFACE ${wxWidgets_CXX_FLAGS})
target_link_directories(wx_toolkit INTERFACE ${wxWidgets_LIBRARY_DIRS})
target_link_libraries(wx_toolkit INTERFACE ${wxWidgets_LIBRARIES})
