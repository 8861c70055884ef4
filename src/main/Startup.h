#pragma once

#include <string>

#include "terminal/Session.h"

namespace Kovo {

// The process entry: start-up, then the welcome window for the life of the process.
int KovoMain(int argc, char** argv);

// The virtual console number of argv[1], 1 to 63; -1 (after logging) for anything else.
int ParseVtArgument(const char* arg);

// Decides TERM, TERMINFO and usingKeyboard from the environment and whether standard output is a
// Linux virtual console. Returns the new usingKeyboard.
bool DecideTerminal(bool isLinuxConsole);

// Claims the pid file unless it names a live process (a second instance is tolerated, unclaimed).
void GuardPidFile(const char* path);

// Redefines the palette and the colour pairs, or sets bwColor when the terminal cannot.
void InitColors();

// Registers the escape sequences of the many terminals the console is reached through.
void DefineKeys();

// Writes the Linux console's palette-reset sequence once, whichever way the process ends.
void ResetPalette();

}  // namespace Kovo
