# One warning level for all of our code; a warning is an error.
add_library(querlin_warnings INTERFACE)
target_compile_options(querlin_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override -Wnull-dereference -Wformat=2 -Werror)

# GCC 12 reports null dereferences and uninitialised members in code that the sanitizers' own
# instrumentation made; the plain presets keep both checks.
if(QUERLIN_SANITIZER)
  target_compile_options(querlin_warnings INTERFACE -Wno-null-dereference -Wno-maybe-uninitialized)
endif()
# ThreadSanitizer doesn't know std::atomic_thread_fence; the standard library uses none on our paths.
if(QUERLIN_SANITIZER STREQUAL "thread")
  target_compile_options(querlin_warnings INTERFACE -Wno-tsan)
endif()
