#include "failing_memory.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
}

namespace {

thread_local int countdown = 0;
thread_local int calls = 0;
thread_local const char* failed = "";

/// Whether code at that address is the library's: everybody else's calls are left alone.
bool in_library(const void* address) {
  static const void* const library = [] {
    Dl_info info;
    return dladdr(dlsym(RTLD_DEFAULT, "OpenPort"), &info) != 0 ? info.dli_fbase : nullptr;
  }();
  Dl_info caller;
  return dladdr(address, &caller) != 0 && caller.dli_fbase == library;
}

bool fails(const char* call, const void* caller) {
  if (countdown == 0 || !in_library(caller)) return false;
  ++calls;
  if (--countdown == 0) failed = call;
  return countdown == 0;
}

template <typename Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

namespace testkit {

void fail_memory(int nth) {
  countdown = nth;
  calls = 0;
}

int memory_calls() {
  countdown = 0;
  return calls;
}

const char* failed_call() {
  return failed;
}

}  // namespace testkit

extern "C" {

void* malloc(size_t size) {
  return fails("malloc", __builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
  return fails("calloc", __builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size) {
  return fails("realloc", __builtin_return_address(0)) ? nullptr : __libc_realloc(memory, size);
}

FILE* fopen(const char* path, const char* mode) {
  static const auto libc = real<FILE*(const char*, const char*)>("fopen");
  return fails("fopen", __builtin_return_address(0)) ? nullptr : libc(path, mode);
}

size_t fread(void* buffer, size_t size, size_t count, FILE* file) {
  static const auto libc = real<size_t(void*, size_t, size_t, FILE*)>("fread");
  return fails("fread", __builtin_return_address(0)) ? 0 : libc(buffer, size, count, file);
}

int fseek(FILE* file, long offset, int whence) {
  static const auto libc = real<int(FILE*, long, int)>("fseek");
  return fails("fseek", __builtin_return_address(0)) ? -1 : libc(file, offset, whence);
}

}  // extern "C"
