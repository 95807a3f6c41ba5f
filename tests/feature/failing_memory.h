// Memory and files that run out, for the library alone: the program defines malloc() and its like.
#pragma once

namespace testkit {

/// The `nth` next call of the library's, by this thread, for memory or to a file fails.
void fail_memory(int nth);
/// How many such calls there were; from now on none fails.
int memory_calls();
/// Which one failed: "malloc", "calloc", "realloc", "fopen", "fread", "fseek".
const char* failed_call();

}  // namespace testkit
