# Import libraries for hosts of the platform's own compiler, from a library's .def file: NAME.lib beside a NAME.def without
# the library's internal names, which such hosts' own tools take as well.

find_program(VEMRADO_DLLTOOL NAMES llvm-dlltool-14 llvm-dlltool REQUIRED)

function(vemrado_foreign_import_library target name exports)
  string(REGEX REPLACE "\" = [A-Za-z0-9_]*" "\"" exports "${exports}")
  set(directory ${CMAKE_BINARY_DIR}/lib)
  file(GENERATE OUTPUT ${directory}/${name}.def CONTENT "${exports}")
  add_custom_command(OUTPUT ${directory}/${name}.lib
    COMMAND ${VEMRADO_DLLTOOL} -m i386:x86-64 -d ${directory}/${name}.def -l ${directory}/${name}.lib
    DEPENDS ${directory}/${name}.def
    VERBATIM)
  install(FILES ${directory}/${name}.def ${directory}/${name}.lib DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT development)
  add_custom_target(${target}ForeignImportLibrary ALL DEPENDS ${directory}/${name}.lib)
endfunction()
