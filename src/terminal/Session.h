#pragma once

#include <signal.h>
#include <termios.h>

#include <cstdint>
#include <string>

namespace Kovo {

// The console session's process-wide state. The key reader and the command runner sit below the
// frames and need it, so it lives here; Frame inherits it, and screens name it as Frame::_loggedIn.
class Session {
  public:
    static uint32_t _idleTimeout;
    static bool _loggedIn;
    static bool _markForRestart;
    static sigset_t _signalSet;
    static int _signalPipe[2];
    static std::string _loginName;
    static bool _isLoggedWithSmartCard;
    static std::string _smartCardLoginId;
    static bool _isUserPasswordEmpty;

    // The signal thread's body: turns signals into single bytes on _signalPipe.
    static void* SignalHandler(void*);
};

// Attributes of standard output read at start-up.
extern struct termios orig_termios;
// The operator sits at the machine's own keyboard.
extern bool usingKeyboard;

inline constexpr const char* KOVO_TIMEOUT_VAR = "/UserVars/KovoTimeOut";
inline constexpr const char* KOVO_APP = "kovo";
// The console's own host account, used for host-tool calls that must not depend on the operator.
inline constexpr const char* KOVO_USER = "kovo";
inline constexpr const char* KOVO_PID_FILE = "/var/run/kovo.pid";

}  // namespace Kovo
