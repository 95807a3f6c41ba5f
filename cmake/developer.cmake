# What only a developer's build has: warnings as errors and the sanitizers. A user's build of the
# library stays free of both, so that a newer compiler's new warning cannot break it.

add_library(tzvio_developer INTERFACE)

if(TZVIO_DEVELOPER_MODE)
  target_compile_options(
    tzvio_developer
    INTERFACE -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wshadow -Wcast-align
              -Wcast-qual -Wformat=2 -Wundef -Wvla
              $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
              -Wextra-semi>
              $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wduplicated-cond -Wlogical-op>)
endif()

set(TZVIO_SANITIZE "" CACHE STRING "Sanitizers for everything that is built, as -fsanitize takes them")
if(TZVIO_SANITIZE)
  add_compile_options(-fsanitize=${TZVIO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TZVIO_SANITIZE})
endif()

# For what is fuzzed; the targets themselves stay without, so that coverage speaks of the code under
# test alone.
function(tzvio_instrument target)
  if(TZVIO_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

option(TZVIO_COVERAGE "Count which lines and branches of the library run" OFF)
