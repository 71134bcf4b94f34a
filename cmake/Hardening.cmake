# What makes a fault in our code harder to use against its user: we read archives, models and other programs' answers.
# A sanitizer looks closer, and gets on with none of it.
add_library(querlin_hardening INTERFACE)
if(QUERLIN_SANITIZER OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  return()
endif()

target_link_options(querlin_hardening INTERFACE
  $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie> -Wl,-z,relro,-z,now,-z,noexecstack)
if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
  return()
endif()

target_compile_options(querlin_hardening INTERFACE
  -fstack-protector-strong -fstack-clash-protection
  # What is loaded at run time has its own kind of code that may lie anywhere.
  $<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:TYPE>,MODULE_LIBRARY>>:-fPIE>
  $<$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},x86_64>:-fcf-protection=full>)
# The checks of copies need optimisation.
target_compile_options(querlin_hardening INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
