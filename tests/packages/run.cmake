# Builds and runs one consumer against one linkage of the library. Given by tests/CMakeLists.txt:
#   consumer, linkage        which of the projects beside this file; static or shared
#   source, scratch          the library's sources; a folder that is this test's own
#   built, builtShared       the build that runs the test, installed from when it has the wanted linkage
#   generator, compiler, launcher

if(linkage STREQUAL "shared")
    set(shared ON)
else()
    set(shared OFF)
endif()

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(configure sourceDir binaryDir)
    run("${CMAKE_COMMAND}" -S "${sourceDir}" -B "${binaryDir}" -G "${generator}"
        "-DCMAKE_CXX_COMPILER=${compiler}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${launcher}"
        -DCMAKE_BUILD_TYPE=Debug -DBUILD_SHARED_LIBS=${shared} ${ARGN})
endfunction()

function(build binaryDir)
    cmake_host_system_information(RESULT cores QUERY NUMBER_OF_LOGICAL_CORES)
    run("${CMAKE_COMMAND}" --build "${binaryDir}" --parallel ${cores} ${ARGN})
endfunction()

file(REMOVE_RECURSE "${scratch}")
file(MAKE_DIRECTORY "${scratch}")
set(project "${CMAKE_CURRENT_LIST_DIR}/${consumer}")

if(consumer STREQUAL "add_subdirectory")
    configure("${project}" "${scratch}/consumer" "-DZELMRESULT_SOURCE=${source}")
    build("${scratch}/consumer")
    run("${scratch}/consumer/consumer")
    return()
endif()

if((builtShared AND shared) OR NOT (builtShared OR shared))
    set(library "${built}")
else()
    set(library "${scratch}/library")
    configure("${source}" "${library}" -DZELMRESULT_BUILD_TESTS=OFF -DZELMRESULT_BUILD_TOOLS=OFF
        -DZELMRESULT_BUILD_EXAMPLES=OFF)
    build("${library}")
endif()

# Installed, then moved: nothing in the package may know the folder it was first put in.
run("${CMAKE_COMMAND}" --install "${library}" --prefix "${scratch}/first")
file(RENAME "${scratch}/first" "${scratch}/prefix")

configure("${project}" "${scratch}/consumer" "-DCMAKE_PREFIX_PATH=${scratch}/prefix")
build("${scratch}/consumer")
run("${scratch}/consumer/consumer")

# The same program by pkg-config alone.
file(GLOB_RECURSE pc "${scratch}/prefix/*/zelmresult.pc")
cmake_path(GET pc PARENT_PATH pcDir)
cmake_path(GET pcDir PARENT_PATH libDir)
set(ENV{PKG_CONFIG_PATH} "${pcDir}")
execute_process(COMMAND pkg-config --cflags --libs zelmresult
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run("${compiler}" -std=c++20 "${project}/main.cpp" -o "${scratch}/by_pkg_config" ${flags})
set(ENV{LD_LIBRARY_PATH} "${libDir}")
run("${scratch}/by_pkg_config")
