#pragma once

#include <string>

namespace KovoTerm {

// How a child ended: a normal exit with `code`, or death by `signal`.
struct ExitStatus {
    bool exited = false;
    int code = -1;
    int signal = 0;

    bool IsExitCode(int c) const { return exited && code == c; }
    std::string Describe() const;
};

}  // namespace KovoTerm
