// The console's log lines in the test's own call list: this binary defines syslog(), so the console's
// calls land here instead of the machine's log. Outside a capture they go nowhere.

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace Kovo::Testing {

namespace {
std::vector<std::string>* gCapture = nullptr;

// "log: " for information, "error: " for errors and worse, so tests see both text and weight.
void Capture(int priority, const char* format, va_list arguments) {
    if (!gCapture) return;
    char line[4096];
    std::vsnprintf(line, sizeof line, format, arguments);
    gCapture->push_back(std::string(LOG_PRI(priority) <= LOG_ERR ? "error: " : "log: ") + line);
}
}  // namespace

void CaptureLog(std::vector<std::string>* into) {
    gCapture = into;
}

void ReleaseLog(const std::vector<std::string>* from) {
    if (gCapture == from) gCapture = nullptr;
}

}  // namespace Kovo::Testing

extern "C" {

void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Kovo::Testing::Capture(priority, format, arguments);
    va_end(arguments);
}

void vsyslog(int priority, const char* format, va_list arguments) {
    Kovo::Testing::Capture(priority, format, arguments);
}

// What a fortified build calls instead.
void __syslog_chk(int priority, int, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Kovo::Testing::Capture(priority, format, arguments);
    va_end(arguments);
}

}  // extern "C"
