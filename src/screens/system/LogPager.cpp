#include "system/LogPager.h"

#include <curses.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

#include "terminal/CommandRunner.h"
#include "terminal/Session.h"

namespace Kovo {

namespace {

// Sets LESSSECURE for the pager and puts the previous state back, however the pager ends.
class SecurePagerEnvironment {
  public:
    SecurePagerEnvironment() {
        if (const char* value = getenv("LESSSECURE")) _previous = value;
        setenv("LESSSECURE", "1", 1);
    }
    ~SecurePagerEnvironment() {
        if (_previous)
            setenv("LESSSECURE", _previous->c_str(), 1);
        else
            unsetenv("LESSSECURE");
    }
    SecurePagerEnvironment(const SecurePagerEnvironment&) = delete;
    SecurePagerEnvironment& operator=(const SecurePagerEnvironment&) = delete;

  private:
    std::optional<std::string> _previous;
};

}  // namespace

int LogPager::Show(const std::string& file) const {
    termios saved{};
    const bool haveSaved = tcgetattr(STDOUT_FILENO, &saved) == 0;
    if (haveSaved) tcsetattr(STDOUT_FILENO, TCSANOW, &orig_termios);
    clear();
    refresh();

    int result;
    {
        SecurePagerEnvironment secure;
        const char* argv[] = {"less", "-cfP", kPrompt, file.c_str(), nullptr};
        result = RunOnTerminal(_program.c_str(), argv);
    }

    // The runner has given the terminal's foreground back to the console.
    if (haveSaved) tcsetattr(STDOUT_FILENO, TCSANOW, &saved);
    // The pager leaves the keypad in its own mode; switching it off and on sends ours again.
    keypad(stdscr, FALSE);
    keypad(stdscr, TRUE);
    return result;
}

}  // namespace Kovo
