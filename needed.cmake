# Looks for what the build needs of the system before anything else does, and names all that is
# missing at once: a Debian package, and a file of it.
set(needed libsqlite3-dev sqlite3.h nettle-dev nettle/sha2.h libinih-dev ini.h rapidjson-dev rapidjson/reader.h
  libcli11-dev CLI/CLI.hpp)
if(TAV_POSTGRES)
  list(APPEND needed libpq-dev libpq-fe.h)
endif()
if(TAV_TESTS)
  list(APPEND needed libgtest-dev gtest/gtest.h)
  find_program(SQLITE3 sqlite3)
endif()

set(missing "")
if(TAV_TESTS AND NOT SQLITE3)
  list(APPEND missing sqlite3)
endif()
while(needed)
  list(POP_FRONT needed package file)
  find_file(FILE_OF_${package} ${file} PATH_SUFFIXES include include/postgresql)
  mark_as_advanced(FILE_OF_${package})
  if(NOT FILE_OF_${package})
    list(APPEND missing ${package})
  endif()
endwhile()
if(missing)
  list(JOIN missing " " missing)
  message(FATAL_ERROR "The build needs what these packages hold (Debian's names): ${missing}\n"
    "Without tests (-DTAV_TESTS=OFF) it needs neither libgtest-dev nor sqlite3, without dictionaries "
    "on a PostgreSQL server (-DTAV_POSTGRES=OFF) no libpq-dev.")
endif()
