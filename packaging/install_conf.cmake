# Installs tav.conf and the folders that it names. The tools look in /etc/tav, so there it goes with
# the system's prefix; with another one it stays below that, to be named in TAV_CONF. A file that is
# there already is somebody's work and is left alone.
set(top "${CMAKE_INSTALL_PREFIX}")
if(top STREQUAL "/usr")
  set(top "")
endif()
set(conf "${top}/etc/tav/tav.conf")
set(dictionary_dir "${top}/var/lib/tav")
set(log_dir "${top}/var/log/tav")

file(MAKE_DIRECTORY "$ENV{DESTDIR}${dictionary_dir}" "$ENV{DESTDIR}${log_dir}")
if(EXISTS "$ENV{DESTDIR}${conf}")
  message(STATUS "Kept: $ENV{DESTDIR}${conf}")
else()
  configure_file("${CMAKE_CURRENT_LIST_DIR}/tav.conf.in" "$ENV{DESTDIR}${conf}" @ONLY)
  list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${conf}")
endif()
