# Installs the build into a prefix of its own and uses it as somebody else's project does: through CMake's
# find_package, through pkg-config, and by running the installed programs after the installation was moved.
#
#   cmake -D BUILD=... -D SOURCE=... -D WORK=... -D COMPILER=... -D GENERATOR=... -P install_test.cmake

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(ENV{LC_ALL} C.UTF-8)

# Runs a command; its output must contain the expected text, a regular expression.
function(expect expected)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE code)
  if(NOT code EQUAL 0 OR NOT output MATCHES "${expected}")
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${code} and wrote\n${output}\nexpected\n${expected}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# Into one place, used from another: nothing may remember where it was installed.
expect("" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
file(RENAME ${WORK}/first ${WORK}/moved)
set(prefix ${WORK}/moved)

foreach(file include/vemrado/vkm_interface.h share/man/man1/vkm.1.gz share/bash-completion/completions/vkm
    share/vemrado/symbology/VKMSym/WKOKES.SYM share/vemrado/maps/sample-town.vkm)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "${file} is not installed")
  endif()
endforeach()

set(read_map_output "scale 1:1000
layer 1: line to 1043010.00 740020.00
layer 7: 114/2 1043022.50 740031.00
layer 3: line to 1043007.50 740090.00")
set(small ${SOURCE}/samples/small.vkm)

expect("" ${CMAKE_COMMAND} -S ${SOURCE}/samples -B ${WORK}/samples -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix}
  -DCMAKE_CXX_COMPILER=${COMPILER} "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Werror"
  "-DCMAKE_C_FLAGS=-Wall -Wextra -Wpedantic -Werror")
expect("" ${CMAKE_COMMAND} --build ${WORK}/samples)
expect("${read_map_output}" ${WORK}/samples/read_map ${small})
set(elements_output "layer 1: 4 points to -740020.00 -1043010.00
layer 7: 114/2
layer 3: 3 points to -740090.00 -1043007.50")
expect("${elements_output}" ${WORK}/samples/elements ${small})
expect("${elements_output}" ${WORK}/samples/elements_c ${small})
expect("2 lines, 1 texts" ${WORK}/samples/load_module ${prefix}/lib/libVemrado.so ${small})
expect("import: absent.vkm.*garden.vkm: 2\nabsent.vkm: -1\njob 1: 2\nno such element" ${WORK}/samples/host_services)

expect("Map scale +1:1000" ${prefix}/bin/vkm info ${small})
file(GLOB_RECURSE converter ${prefix}/lib*/vkm-convert.so)
if(converter)
  expect("^$" ${prefix}/bin/vkm convert ${small} -o ${WORK}/small.dxf)
endif()

set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
expect("" pkg-config --cflags --libs vemrado)
separate_arguments(flags UNIX_COMMAND "${output}")
expect("" ${COMPILER} ${SOURCE}/samples/read_map.cpp -o ${WORK}/read_map ${flags} -Wl,-rpath,${prefix}/lib)
expect("${read_map_output}" ${WORK}/read_map ${small})
expect("" pkg-config --cflags --libs vkm)
separate_arguments(flags UNIX_COMMAND "${output}")
foreach(standard 17 20)
  expect("" ${COMPILER} -std=c++${standard} -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    ${SOURCE}/samples/elements.cpp -o ${WORK}/elements ${flags} -Wl,-rpath,${prefix}/lib)
  expect("${elements_output}" ${WORK}/elements ${small})
endforeach()
expect("" pkg-config --cflags --libs vemrado-host)
separate_arguments(flags UNIX_COMMAND "${output}")
expect("" ${COMPILER} ${SOURCE}/samples/host_services.cpp -o ${WORK}/host_services ${flags}
  -Wl,-rpath,${prefix}/lib)
expect("no such element" ${WORK}/host_services)
