#include "watched_libc.h"

#include <cstdio>
#include <cstdlib>

namespace {

bool active = false;
int failing = 0;
int allocated = 0;
int held = 0;
int opened = 0;

template <typename Allocate>
void* watch(Allocate allocate) {
  if (!active) return allocate();
  if (++allocated == failing) return nullptr;
  void* memory = allocate();
  if (memory != nullptr) ++held;
  return memory;
}

}  // namespace

namespace watched {

void start(int failing_allocation) {
  active = true;
  failing = failing_allocation;
  allocated = held = opened = 0;
}
void stop() {
  active = false;
}
int allocations() {
  return allocated;
}
int blocks_held() {
  return held;
}
int files_open() {
  return opened;
}

}  // namespace watched

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* memory);
std::FILE* __real_fopen(const char* path, const char* mode);
int __real_fclose(std::FILE* file);

void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void __wrap_free(void* memory);
std::FILE* __wrap_fopen(const char* path, const char* mode);
int __wrap_fclose(std::FILE* file);

void* __wrap_malloc(std::size_t size) {
  return watch([&] { return __real_malloc(size); });
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return watch([&] { return __real_calloc(count, size); });
}

void __wrap_free(void* memory) {
  if (active && memory != nullptr) --held;
  __real_free(memory);
}

std::FILE* __wrap_fopen(const char* path, const char* mode) {
  std::FILE* file = __real_fopen(path, mode);
  if (active && file != nullptr) ++opened;
  return file;
}

int __wrap_fclose(std::FILE* file) {
  if (active) --opened;
  return __real_fclose(file);
}
// NOLINTEND(bugprone-reserved-identifier)

}  // extern "C"
