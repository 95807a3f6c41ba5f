# GoogleTest and GoogleMock from Debian's source package (googletest), because there is no 32-bit
# build of them to install.
set(TZVIO_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF)
add_subdirectory(${TZVIO_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
if(NOT TARGET GTest::gtest)
  foreach(name gtest gtest_main gmock gmock_main)
    add_library(GTest::${name} ALIAS ${name})
  endforeach()
endif()
include(GoogleTest)
