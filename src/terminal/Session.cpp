#include "terminal/Session.h"

namespace Kovo {

uint32_t Session::_idleTimeout = 600;
bool Session::_loggedIn = false;
bool Session::_markForRestart = false;
sigset_t Session::_signalSet;
int Session::_signalPipe[2] = {-1, -1};
std::string Session::_loginName;
bool Session::_isLoggedWithSmartCard = false;
std::string Session::_smartCardLoginId;
bool Session::_isUserPasswordEmpty = false;

struct termios orig_termios;
bool usingKeyboard = false;

}  // namespace Kovo
