// A /dev of our own, for users who may not write to the machine's.
#pragma once

namespace virtual_printer {

// Gives this process, and every one that it starts from now on, a private /dev that holds all
// that the machine's holds and can be written to. The rest of the machine sees nothing of it.
// Throws std::system_error when the machine does not allow it; the process must have one thread.
void enter_private_dev();

}  // namespace virtual_printer
