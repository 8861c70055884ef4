#pragma once

// Steps the end-to-end tests share: hosts made from a scenario, the host's store and records read from
// outside, and the operator's way through the login dialog and the menu.

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "HostConsole.h"

namespace KovoE2e {

using namespace std::chrono_literals;
using KovoTerm::Key;
using KovoTerm::VirtualTerminal;

// The accounts of the scenarios and their documented passwords.
inline constexpr const char* kRootPassword = "Kovo-Demo1";
inline constexpr const char* kViewerPassword = "Viewer-Pass1";
inline constexpr const char* kExpiredPassword = "Expired-Pass1";

inline constexpr const char* kLoginTitle = "Authentication Required";
inline constexpr const char* kWelcomeKeys = "<F12> Shut Down/Restart";
inline constexpr const char* kMenuTitle = "System Customization";
inline constexpr const char* kTroubleshootingTitle = "Troubleshooting Mode Options";

// Menu entries of the default host over a terminal without the keyboard entry, counted in presses of
// Down from Configure Password.
inline constexpr int kLockdownDowns = 1;
inline constexpr int kTroubleshootingDowns = 6;
inline constexpr int kResetDowns = 9;
// Entries below Configure Password down to View System Logs (blank lines are skipped).
inline constexpr int kSystemLogsDowns = 7;
// At the machine's own keyboard the menu has Configure Keyboard after Network Restore Options.
inline constexpr int kKeyboardDowns = 6;
// The keyboard dialog's own text (the menu shows another description of the entry).
inline constexpr const char* kKeyboardDialogText = "If you are having difficulty";
inline constexpr const char* kPagerPrompt = "<Q> Quit </> RegExp Search <H> Help";

// JSON pointer and JSON value pairs.
using StoreChanges = std::vector<std::pair<std::string, std::string>>;

// --- hosts and their records -----------------------------------------------------------------------

// Runs the simulated host's launcher to completion with its output discarded; true when it exits 0.
bool Launcher(const std::vector<std::string>& arguments);

// A host made from `scenario` with `changes` made to its store, its console started and showing the
// welcome screen.
std::unique_ptr<HostConsole> MakeHost(const std::string& scenario, const StoreChanges& changes = {},
                                      const ConsoleStart& start = ConsoleStart{});

// A console whose clock runs `speedUp` times faster (the console alone; the host keeps real time).
ConsoleStart FastClock(int speedUp = 20);
// A host the console comes back on after it ends or the host restarts.
ConsoleStart Restarting(ConsoleStart start = ConsoleStart{});

// Changes the running host's store from outside, as its management services would.
bool SetStore(HostConsole& host, const std::string& pointer, const std::string& value);
// The host's store as its disk holds it (meaningful once the host has stopped, or for settled values).
nlohmann::json StoreOnDisk(const HostConsole& host);
// A value of the running host's store, read through the launcher from inside the host.
std::string StoreValue(const HostConsole& host, const std::string& pointer);

// A record file the host writes under /var/log/kovo-sim ("events.log", "audit.log", "commands.log").
std::string HostRecords(const HostConsole& host, const std::string& name);
// The lines of `text` that contain `part`.
std::vector<std::string> Lines(const std::string& text, const std::string& part);
// Waits until the record file holds at least `count` lines containing `part`.
bool WaitForRecords(const HostConsole& host, const std::string& name, const std::string& part,
                    size_t count = 1, std::chrono::milliseconds deadline = 10000ms);
// Waits until the syslog holds at least `count` lines containing every one of `parts`.
bool WaitForSyslogCount(HostConsole& host, const std::vector<std::string>& parts, size_t count,
                        std::chrono::milliseconds deadline = 10000ms);
// Host commands run so far whose recorded line holds every one of `parts`.
size_t CommandCount(const HostConsole& host, const std::vector<std::string>& parts);
// Replaces a host program with a script of its own (inside the host, so only the host's disk changes).
bool ReplaceHostProgram(HostConsole& host, const std::string& path, const std::string& script);

// The lines of a file of this machine (a host's record seen through its upper directory).
std::vector<std::string> FileLines(const std::string& path);
// Logs in and starts the configuration reset with the host's reset program replaced by one that records
// "started", waits until "/run/go-on" exists in the host and records "finished". Returns the record's
// path once "started" is in it; "" when the reset did not start.
std::string StartHeldReset(HostConsole& host);

// No secret anywhere an operator or an administrator could read it.
void ExpectSecretNowhere(HostConsole& host, const std::string& secret);

// --- the operator's steps ----------------------------------------------------------------------------
// Every screen discards keys typed while it is being shown, so each step waits for the screen to settle.

// Waits for `text`, then for the screen to settle.
bool Settled(HostConsole& host, const std::string& text, std::chrono::milliseconds quiet = 300ms);
// Presses `key`, then waits for `text` and the screen to settle.
bool PressFor(HostConsole& host, Key key, const std::string& text, std::chrono::milliseconds quiet = 300ms);
// Waits for `text` to go, then for the screen behind to settle.
bool Closed(HostConsole& host, const std::string& text, std::chrono::milliseconds quiet = 300ms);
// F2 (or `key`) and the login dialog, ready for typing with the name field focused.
bool OpenLogin(HostConsole& host, Key key = Key::F2);
// Types a name (empty keeps the prefilled one) and a secret into the open dialog and submits them.
void Submit(HostConsole& host, const std::string& user, const std::string& secret);
bool MenuShown(const VirtualTerminal& screen);
// Logs in from the welcome screen and waits for the menu.
bool LogIn(HostConsole& host, const std::string& user, const std::string& secret);
// Closes a message dialog showing `text` with Enter and waits for it to go.
bool Acknowledge(HostConsole& host, const std::string& text);
// F12, the login dialog as root, and the shut-down dialog.
bool OpenShutdown(HostConsole& host);
// From the menu's first entry, `downs` presses of Down and Enter; waits for `title`.
bool OpenFromMenu(HostConsole& host, int downs, const std::string& title);
// Logs in as root and opens the troubleshooting window.
bool OpenTroubleshooting(HostConsole& host);

}  // namespace KovoE2e
