#pragma once

#include <string>

namespace ZenkCtl::Util {

// Runs a command line through "/bin/sh -c" with a fixed environment (PATH of the host's program
// directories only).
//   logOutput: each line the command writes (standard output and error) goes to syslog at info level;
//              otherwise both go to /dev/null.
//   wait:      wait for the command and return its exit status (0-255; -1 when it could not be started
//              or ended by a signal); otherwise return 0 as soon as it has started.
// Every command runs in a session of its own: it outlives the caller and its terminal, and no key at that
// terminal interrupts it.
int ZenkCtl_Exec(const std::string& command, bool logOutput, bool wait);

}  // namespace ZenkCtl::Util
