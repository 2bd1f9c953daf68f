# An import library for hosts of the platform's own compiler, from the module's .def file: vemrado.lib beside a .def
# without the module's internal names, which such hosts' own tools take as well.

find_program(VEMRADO_DLLTOOL NAMES llvm-dlltool-14 llvm-dlltool REQUIRED)

function(vemrado_foreign_import_library target definitions)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${definitions})
  set(directory ${CMAKE_BINARY_DIR}/lib)
  file(READ ${definitions} exports)
  string(REGEX REPLACE "\" = [A-Za-z0-9_]*" "\"" exports "${exports}")
  file(GENERATE OUTPUT ${directory}/vemrado.def CONTENT "${exports}")
  add_custom_command(OUTPUT ${directory}/vemrado.lib
    COMMAND ${VEMRADO_DLLTOOL} -m i386:x86-64 -d ${directory}/vemrado.def -l ${directory}/vemrado.lib
    DEPENDS ${directory}/vemrado.def
    VERBATIM)
  install(FILES ${directory}/vemrado.def ${directory}/vemrado.lib DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT development)
  add_custom_target(${target}ForeignImportLibrary ALL DEPENDS ${directory}/vemrado.lib)
endfunction()
