#pragma once

#include <functional>
#include <string>

#include "terminal/Session.h"

namespace Kovo {

// The process entry: start-up, then the welcome window for the life of the process. The process is
// never dumped (secrets pass through its memory), and whatever escapes the console ends it through
// EndUnexpectedly.
int KovoMain(int argc, char** argv);

// Runs `console`; an exception that escapes it ends the console through EndUnexpectedly, with status 1.
int RunToTheEnd(const std::function<int()>& console);

// The end of a console that failed in a way nothing caught: the reason goes to the log at critical
// priority, and the terminal is given back as the console found it (curses ended, its attributes and
// palette restored), so the host's next console, or its login prompt, gets a usable terminal.
void EndUnexpectedly(const std::string& reason);

// The virtual console number of argv[1], 1 to 63; -1 (after logging) for anything else.
int ParseVtArgument(const char* arg);

// Decides TERM, TERMINFO and usingKeyboard from the environment and whether standard output is a
// Linux virtual console. Returns the new usingKeyboard.
bool DecideTerminal(bool isLinuxConsole);

// Claims the pid file unless it names a live process (a second instance is tolerated, unclaimed).
void GuardPidFile(const char* path);

// Makes every update of the screen reach the terminal whole, so that a slow line never shows half a
// screen: curses neither looks for typed keys between the lines of an update (flushing what it has so
// far) nor flushes at every cursor move (which it does until it has once been ended and resumed).
// Called once after curses starts, before anything is drawn.
void SendScreensWhole();

// From here on a crash (a fatal signal) gives the terminal back before the process ends: attributes
// as found, the screen left, the keypad and cursor as they were and the palette reset.
void GiveTheTerminalBackOnCrash();

// Redefines the palette and the colour pairs, or sets bwColor when the terminal cannot.
void InitColors();

// Registers the escape sequences of the many terminals the console is reached through.
void DefineKeys();

// Writes the Linux console's palette-reset sequence once, whichever way the process ends.
void ResetPalette();

}  // namespace Kovo
