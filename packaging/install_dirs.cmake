# Where things are installed. Debian's linker looks for libraries in a folder per architecture.
if(EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE AND NOT CMAKE_INSTALL_LIBDIR)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Libraries, below the prefix")
endif()
# Documents go where Debian looks for those of the package.
set(CMAKE_INSTALL_DOCDIR share/doc/tav-deploy CACHE PATH "Documents, below the prefix")
include(GNUInstallDirs)
