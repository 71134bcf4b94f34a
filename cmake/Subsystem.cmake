# The dependency direction between the folders below src/ is enforced by the compiler.
#
#   subsystem(<folder> SOURCES ... DEPENDS <folder>... LIBRARIES <target>...)
#
# makes the static library querlin_<folder>. A header is included by its path below src/
# ("foundation/Task.h"). Each folder has an include root of its own that shows this folder and
# nothing else, and a target sees only its own root and those of the folders that it names in
# DEPENDS; include paths are not passed on. So an include of a folder that is not named, or of
# one further up, does not compile.

set(QUERLIN_INCLUDE_ROOTS ${CMAKE_BINARY_DIR}/include-roots)

function(querlin_include_root folder source_dir)
  file(MAKE_DIRECTORY ${QUERLIN_INCLUDE_ROOTS}/${folder})
  file(CREATE_LINK ${source_dir} ${QUERLIN_INCLUDE_ROOTS}/${folder}/${folder} SYMBOLIC)
endfunction()

# Lets `target` include the headers of the named folders and links their libraries.
function(querlin_use target)
  foreach(folder IN LISTS ARGN)
    target_include_directories(${target} PRIVATE ${QUERLIN_INCLUDE_ROOTS}/${folder})
    target_link_libraries(${target} PRIVATE querlin_${folder})
  endforeach()
endfunction()

function(querlin_compile_as_ours target)
  target_link_libraries(${target} PRIVATE querlin_warnings)
  target_precompile_headers(${target} PRIVATE
    <chrono> <coroutine> <cstdint> <expected> <filesystem> <functional> <map> <memory> <optional>
    <span> <string> <string_view> <utility> <variant> <vector>)
endfunction()

function(subsystem folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS;LIBRARIES")
  set(target querlin_${folder})
  querlin_include_root(${folder} ${CMAKE_CURRENT_SOURCE_DIR})
  if(arg_SOURCES)
    add_library(${target} STATIC ${arg_SOURCES})
    querlin_compile_as_ours(${target})
    target_include_directories(${target} PRIVATE ${QUERLIN_INCLUDE_ROOTS}/${folder})
    querlin_use(${target} ${arg_DEPENDS})
    target_link_libraries(${target} PRIVATE ${arg_LIBRARIES})
  else()
    # A folder of records and ports alone.
    add_library(${target} INTERFACE)
  endif()
endfunction()
