# Writes files into a header, each an array of its bytes: page/page.css becomes page_css.
#   cmake -DOUTPUT=HEADER -DFILES=FILE:FILE... -P embed.cmake
string(REPLACE ":" ";" files "${FILES}")
set(text "#pragma once\n#include <array>\n")
foreach(file IN LISTS files)
  file(READ ${file} bytes HEX)
  file(SIZE ${file} size)
  cmake_path(GET file FILENAME name)
  string(REPLACE "." "_" name ${name})
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND text "inline constexpr std::array<char, ${size}> ${name}{${bytes}};\n")
endforeach()
file(WRITE ${OUTPUT} "${text}")
