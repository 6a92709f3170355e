# What makes a mistake in memory harder to use against a release: applied to every target, generated code included.
#   position independent code and programs        nothing is at a known address
#   full RELRO                                    what the loader has resolved cannot be written any more
#   stack protector, no clashing stacks           a return address that was written over, a stack that grew into another, ends
#                                                 the process
#   _FORTIFY_SOURCE                               the C library refuses to write beyond an object whose size is known
#   control-flow protection (x86)                 indirect jumps end at beginnings of functions only, where the machine checks it
# Not with sanitizers: they watch the same functions of the C library themselves.

include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

if(NOT ZARN_SANITIZE)
  set(optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
  add_compile_options("$<${optimised}:-fstack-protector-strong;-fstack-clash-protection;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
    add_compile_options("$<${optimised}:-fcf-protection=full>")
  endif()
  add_link_options("$<${optimised}:LINKER:-z,relro,-z,now,-z,noexecstack>")
endif()
