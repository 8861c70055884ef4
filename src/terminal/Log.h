#pragma once

namespace Kovo {

// Logs a failed system call at error priority as "<what> with errno(<n>): <message>".
void LogErrno(const char* what);

}  // namespace Kovo
