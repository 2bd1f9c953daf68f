# What cpack makes: archives that unpack anywhere, and Debian packages. scripts/package runs it, finishes the Debian
# packages and tries the results. A new package is a component: one call of vemrado_component below.

set(CPACK_PACKAGE_NAME vemrado)
set(CPACK_PACKAGE_VENDOR "Vemrado")
set(CPACK_PACKAGE_CONTACT "Vemrado maintainers <maintainers@vemrado.example>")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME vemrado-${PROJECT_VERSION}-windows-x64)
else()
  set(CPACK_GENERATOR TGZ)
  set(CPACK_PACKAGE_FILE_NAME vemrado-${PROJECT_VERSION}-linux-x64)
endif()

# One archive, but a Debian package for each kind of user.
set(CPACK_COMPONENTS_ALL)
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

find_program(GZIP gzip)

# vemrado_component(COMPONENT PACKAGE SECTION SUMMARY DESCRIPTION [DEPENDS ...] [RECOMMENDS ...] [ENHANCES ...])
#
# The Debian package of what is installed with this component. A package is found by its users through the first line of
# the description; every package carries its copyright and changelog.
function(vemrado_component component package section summary description)
  cmake_parse_arguments(ARG "" "DEPENDS;RECOMMENDS;ENHANCES" "" ${ARGN})
  string(TOUPPER ${component} name)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  set(CPACK_DEBIAN_${name}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${name}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${name}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
  foreach(relation DEPENDS RECOMMENDS ENHANCES)
    if(ARG_${relation})
      set(CPACK_DEBIAN_${name}_PACKAGE_${relation} "${ARG_${relation}}" PARENT_SCOPE)
    endif()
  endforeach()
  if(WIN32 OR NOT GZIP)
    return()
  endif()
  set(documents ${CMAKE_INSTALL_DATADIR}/doc/${package})
  set(changelog ${CMAKE_BINARY_DIR}/share/doc/changelog.gz)
  if(NOT EXISTS ${changelog})
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/share/doc)
    execute_process(COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/cmake/debian/changelog OUTPUT_FILE ${changelog})
  endif()
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${changelog} DESTINATION ${documents}
    COMPONENT ${component})
  set(overrides ${PROJECT_SOURCE_DIR}/cmake/debian/${package}.lintian-overrides)
  if(EXISTS ${overrides})
    install(FILES ${overrides} DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${package}
      COMPONENT ${component})
  endif()
endfunction()

set(exactly_this "libvemrado1 (= ${PROJECT_VERSION})")
# xdg-utils opens the browser for vkm view.
set(recommends RECOMMENDS "xdg-utils")
if(TARGET ogr_VKM)
  set(recommends RECOMMENDS "vemrado-gdal, xdg-utils")
endif()
vemrado_component(programs vemrado science
  "Command line for VKM cadastral map files"
  "VKM is a text format in which sheets of digital cadastral maps are exchanged.\nThe program vkm says what is in such files, checks them, lists their elements\nas JSON, draws them as maps and converts them. Documents and sample maps come\nwith it."
  DEPENDS "${exactly_this}, fonts-dejavu-core" ${recommends})
vemrado_component(library libvemrado1 libs
  "Import module for VKM cadastral map files"
  "VKM is a text format in which sheets of digital cadastral maps are exchanged.\nSurveying and mapping programs load this library to read such files element\nby element, with colours, line types and symbols. A sample symbology comes\nwith it.")
vemrado_component(interface libvkm1 libs
  "C interface to VKM cadastral map files"
  "Programs in C, C++ and other languages read VKM files, the text exchange format\nof digital cadastral maps, through this library: elements, strokes, columns,\nchecks and pictures."
  DEPENDS "${exactly_this}, fonts-dejavu-core")
vemrado_component(development libvemrado-dev libdevel
  "Headers of the libraries for VKM cadastral map files"
  "What programmers need to build programs that read VKM files, the text exchange\nformat of digital cadastral maps: headers, and the files by which CMake and\npkg-config find the library."
  DEPENDS "${exactly_this}, libvkm1 (= ${PROJECT_VERSION})")
if(NOT WIN32)
  vemrado_component(python python3-vemrado python
    "VKM cadastral map files in Python"
    "Maps in VKM files, the text exchange format of digital cadastral maps, as numpy\ncolumns, as pandas and geopandas tables, as pictures and as lists of what is\nwrong with them or changed in them."
    DEPENDS "python3:any, python3-numpy, libvkm1 (= ${PROJECT_VERSION})"
    RECOMMENDS "python3-geopandas, python3-matplotlib")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
endif()
if(TARGET ogr_VKM)
  vemrado_component(gdal vemrado-gdal science
    "GDAL vector driver for VKM cadastral map files"
    "With this driver QGIS, ogr2ogr and every other program that reads through GDAL\nopens VKM files, the text exchange format of digital cadastral maps. The\nconverter of the command line comes with it."
    DEPENDS "${exactly_this}" ENHANCES gdal-bin)
endif()

set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
set(CPACK_DEBIAN_INTERFACE_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
