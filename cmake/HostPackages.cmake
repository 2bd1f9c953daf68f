# Header-only libraries of the building system for a cross build, whose package search ends at the target's own root.
# Only the library's folder is linked into the build tree: the building system's other headers must not be seen.

function(vemrado_host_headers target directory)
  if(NOT TARGET ${target})
    get_filename_component(name ${directory} NAME)
    set(include ${CMAKE_BINARY_DIR}/host-include)
    file(MAKE_DIRECTORY ${include})
    file(CREATE_LINK ${directory} ${include}/${name} SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${include})
  endif()
endfunction()

if(CMAKE_CROSSCOMPILING)
  vemrado_host_headers(CLI11::CLI11 /usr/include/CLI)
  vemrado_host_headers(nlohmann_json::nlohmann_json /usr/include/nlohmann)
else()
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
endif()
