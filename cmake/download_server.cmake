# Where the wizard finds the download server: a setting of the build, not of the user. Only a
# program's main file learns it, through this function; everything else is told by that file.
#
# The default is an address that can never exist, so that no stranger gets the download folder's
# password.
set(ORV_DOWNLOAD_SERVER "https://download.orvane.example" CACHE STRING
    "Address of the download server, scheme and host, without the path")

# The server of the demo installation, started by `paptool serve`.
set(ORV_DEMO_SERVER_PORT 8734)
set(ORV_DEMO_DOWNLOAD_SERVER "http://127.0.0.1:${ORV_DEMO_SERVER_PORT}")

# Makes ORV_DOWNLOAD_SERVER a wide string literal in the main file of this target, and nowhere else.
function(orv_set_download_server target main_file address)
  set_property(SOURCE "${main_file}" TARGET_DIRECTORY "${target}" APPEND PROPERTY
               COMPILE_DEFINITIONS "ORV_DOWNLOAD_SERVER=L\"${address}\"")
endfunction()
