# One warning level for all of our code; a warning is an error.
add_library(querlin_warnings INTERFACE)
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(querlin_warnings INTERFACE -w) # Only builds the fuzz targets; tools/tidy has its warnings.
  return()
endif()
target_compile_options(querlin_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override -Wnull-dereference -Wformat=2 -Werror)

# With optimisation or a sanitizer's instrumentation GCC 12 reports null dereferences, uninitialised
# members and overruns in its own library's headers. The debug preset, which ./test builds, keeps
# these checks.
set(checks_with_false_alarms
  -Wno-null-dereference -Wno-maybe-uninitialized -Wno-array-bounds -Wno-stringop-overflow -Wno-restrict)
if(QUERLIN_SANITIZER OR CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(querlin_warnings INTERFACE ${checks_with_false_alarms})
endif()
# ThreadSanitizer doesn't know std::atomic_thread_fence; the standard library uses none on our paths.
if(QUERLIN_SANITIZER STREQUAL "thread")
  target_compile_options(querlin_warnings INTERFACE -Wno-tsan)
endif()
