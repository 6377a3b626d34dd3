# Stops when the host of the web pages could be none: it stands between "https://" and a path, so it is a name, or a name
# and a port, and nothing else. Empty means that there is none. Works as a script, too:
#   cmake -DMIRELLE_WEB_HOST=... -P MirelleWebHost.cmake
if(NOT "${MIRELLE_WEB_HOST}" STREQUAL "" AND NOT "${MIRELLE_WEB_HOST}" MATCHES "^[A-Za-z0-9][A-Za-z0-9.-]*(:[0-9]+)?$")
  message(FATAL_ERROR
    "MIRELLE_WEB_HOST is \"${MIRELLE_WEB_HOST}\", but must be a host and perhaps a port, such as example.org:8443")
endif()
