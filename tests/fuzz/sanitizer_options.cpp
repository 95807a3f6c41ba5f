// A refused allocation is a case to test, not a fault: headers of files may ask for any size.
extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1";
}
