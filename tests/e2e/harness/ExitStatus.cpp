#include "ExitStatus.h"

#include <cstring>

namespace KovoTerm {

std::string ExitStatus::Describe() const {
    if (exited) return "exited with status " + std::to_string(code);
    if (signal)
        return std::string("killed by signal ") + std::to_string(signal) + " (" + strsignal(signal) + ")";
    return "unknown end";
}

}  // namespace KovoTerm
