# The dependency direction between the folders below src/ is enforced by the compiler.
#
#   subsystem(<folder> SOURCES ... DEPENDS <folder>... LIBRARIES <target>...)
#
# makes the static library querlin_<folder>. A header is included by its path below src/
# ("foundation/Task.h"). Each folder has an include root of its own that shows this folder and
# nothing else, and a target sees only its own root and those of the folders that it names in
# DEPENDS; include paths are not passed on. So an include of a folder that is not named, or of
# one further up, does not compile.
#
# A folder may lie deeper: platform/curl, from src/platform/curl, is the library querlin_platform_curl;
# its root shows platform/curl and none of that folder's neighbours.

set(QUERLIN_INCLUDE_ROOTS ${CMAKE_BINARY_DIR}/include-roots)

function(querlin_include_root folder source_dir)
  string(REPLACE "/" "_" name ${folder})
  cmake_path(GET folder PARENT_PATH parent)
  file(MAKE_DIRECTORY ${QUERLIN_INCLUDE_ROOTS}/${name}/${parent})
  file(CREATE_LINK ${source_dir} ${QUERLIN_INCLUDE_ROOTS}/${name}/${folder} SYMBOLIC)
endfunction()

# Lets `target` include the headers of the named folders and links their libraries.
function(querlin_use target)
  foreach(folder IN LISTS ARGN)
    string(REPLACE "/" "_" name ${folder})
    target_include_directories(${target} PRIVATE ${QUERLIN_INCLUDE_ROOTS}/${name})
    target_link_libraries(${target} PRIVATE querlin_${name})
  endforeach()
endfunction()

function(querlin_compile_as_ours target)
  target_link_libraries(${target} PRIVATE querlin_warnings querlin_hardening)
  target_precompile_headers(${target} PRIVATE
    <chrono> <coroutine> <cstdint> <expected> <filesystem> <functional> <map> <memory> <optional>
    <span> <string> <string_view> <utility> <variant> <vector>)
endfunction()

function(subsystem folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS;LIBRARIES")
  string(REPLACE "/" "_" name ${folder})
  set(target querlin_${name})
  querlin_include_root(${folder} ${CMAKE_CURRENT_SOURCE_DIR})
  if(arg_SOURCES)
    add_library(${target} STATIC ${arg_SOURCES})
    querlin_compile_as_ours(${target})
    target_include_directories(${target} PRIVATE ${QUERLIN_INCLUDE_ROOTS}/${name})
    querlin_use(${target} ${arg_DEPENDS})
    target_link_libraries(${target} PRIVATE ${arg_LIBRARIES})
  else()
    # A folder of records and ports alone.
    add_library(${target} INTERFACE)
  endif()
endfunction()
