// The memory and the files of the code under test, watched: which allocation is to fail, and what
// is still held. The program is linked with --wrap for malloc, free, fopen and fclose.
#pragma once

namespace watched {

/// Counts from here on, and lets the `nth` allocation fail (0: none).
void start(int failing_allocation = 0);
/// Ends that.
void stop();

int allocations();
int blocks_held();
int files_open();

}  // namespace watched
