#pragma once

// Shell commands run by tests on real hosts (the network lab, the Debian guest), whose state is read
// back through the host's own tools.

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>

namespace KovoE2e {

// `text` as one word of a shell line, whatever it holds.
inline std::string Quote(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// A command's standard output, without its last line ends.
inline std::string Output(const std::string& command) {
    std::string text;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
        pclose(pipe);
    }
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

// Polls `condition` every `poll` until it holds; false when `deadline` passed first.
inline bool WaitFor(const std::function<bool()>& condition, std::chrono::milliseconds deadline,
                    std::chrono::milliseconds poll = std::chrono::milliseconds(100)) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(poll);
    }
    return true;
}

}  // namespace KovoE2e
