# What cmake --install puts in place: headers, libraries, the command line, sample data, documents, and the files by
# which CMake and pkg-config projects find them. The command line's man page and completion are installed where they
# are made, in tools/.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vemrado)

install(DIRECTORY include/vemrado DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
foreach(library framework zrv320 zrvDX320)
  install(FILES host/${library}/${library}.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vemrado/host/${library}
    COMPONENT development)
endforeach()

# On Windows a library is its DLL, beside the programs, and its import library.
install(TARGETS Vemrado VemradoFramework zrv320 zrvDX320 EXPORT vemrado
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

install(TARGETS libvkm EXPORT vemrado
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT interface
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT interface NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

if(TARGET vkm)
  file(RELATIVE_PATH libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(vkm PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_programs}")
  install(TARGETS vkm RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# The page for browsers, where the preset web has been built.
install(FILES ${PROJECT_SOURCE_DIR}/build/web/vemrado.html DESTINATION ${CMAKE_INSTALL_DATADIR}/vemrado OPTIONAL)
install(DIRECTORY data/symbology DESTINATION ${CMAKE_INSTALL_DATADIR}/vemrado COMPONENT library
  PATTERN sources EXCLUDE)
install(DIRECTORY data/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vemrado/maps FILES_MATCHING PATTERN "*.vkm"
  PATTERN symbology EXCLUDE)
install(FILES README.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vemrado)
install(DIRECTORY docs samples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vemrado)

install(EXPORT vemrado FILE vemradoTargets.cmake NAMESPACE vemrado:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/vemradoConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/vemradoConfig.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/vemradoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vemradoConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/vemradoConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The paths in the pkg-config files are relative to where these lie, so that an installation can be moved.
file(RELATIVE_PATH prefix_from_pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(name vemrado vemrado-host vkm)
  configure_file(cmake/${name}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endforeach()

# Everything that is installed, and nothing else: what has to be built before packing.
add_custom_target(distribution DEPENDS Vemrado VemradoFramework zrv320 zrvDX320 libvkm)
foreach(target vkm vemrado_python vkm_documents vkm_convert ogr_VKM VemradoForeignImportLibrary libvkmForeignImportLibrary)
  if(TARGET ${target})
    add_dependencies(distribution ${target})
  endif()
endforeach()
