# Google Benchmark from Debian's source package, for the same reason as GoogleTest;
# tools/benchmark-source.sh puts it there.
set(TZVIO_BENCHMARK_SOURCE ${PROJECT_SOURCE_DIR}/build/benchmark-source CACHE PATH "Google Benchmark's sources")
set(BENCHMARK_ENABLE_TESTING OFF)
set(BENCHMARK_ENABLE_INSTALL OFF)
set(BENCHMARK_ENABLE_WERROR OFF)
set(GIT_VERSION 0.0.0) # its own then; Debian has taken out the look at git
add_subdirectory(${TZVIO_BENCHMARK_SOURCE} ${CMAKE_BINARY_DIR}/benchmark EXCLUDE_FROM_ALL SYSTEM)
