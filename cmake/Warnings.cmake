# One warning level for all of our code; a warning is an error.
add_library(querlin_warnings INTERFACE)
target_compile_options(querlin_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override -Wnull-dereference -Wformat=2 -Werror)

# GCC 12 sees null dereferences, uninitialised members and overrun copies in code that the sanitizers'
# own instrumentation made; the plain presets keep these checks.
if(QUERLIN_SANITIZER)
  target_compile_options(querlin_warnings INTERFACE
    -Wno-null-dereference -Wno-maybe-uninitialized -Wno-array-bounds -Wno-stringop-overflow)
endif()
# ThreadSanitizer doesn't know std::atomic_thread_fence; the standard library uses none on our paths.
if(QUERLIN_SANITIZER STREQUAL "thread")
  target_compile_options(querlin_warnings INTERFACE -Wno-tsan)
endif()
