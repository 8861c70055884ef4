#pragma once

// Steps of the network window's end-to-end tests: opening the window and its entries, editing a dialog's
// fields, leaving with an answer, and reading what the host then runs.

#include <initializer_list>
#include <string>
#include <vector>

#include "HostSteps.h"

namespace KovoE2e {

// From Configure Password: Lockdown, then the network.
inline constexpr int kNetworkDowns = 2;
inline constexpr const char* kWindowMark = "VLAN (optional)";
inline constexpr const char* kConfirmTitle = "Configure Management Network: Confirm";
inline constexpr const char* kRebootQuestion = "Apply changes and reboot host?";
inline constexpr const char* kErrorTitle = "Enable Management Network: Error";
inline constexpr const char* kStaticChoice = "Set static IPv4 address";

// Entries counted in presses of Down from Network Adapters (the blank line is skipped); the window's
// entries open like the menu's (OpenFromMenu).
inline constexpr int kVlanDowns = 1, kIpv4Downs = 2, kIpv6Downs = 3, kDnsDowns = 4, kSuffixDowns = 5;

// Menu entries below Configure Password: Restart, Test and Network Restore Options.
inline constexpr int kRestartDowns = 3, kTestDowns = 4, kRestoreDowns = 5;
// The test dialog's first field: the menu shows the dialog's title too, as the selected entry's.
inline constexpr const char* kTestMark = "Ping Address #1";
inline constexpr const char* kFqdn = "kovo-host-01.lab.example";

// Presses `key` `times` times, letting the screen settle after each.
void Press(HostConsole& host, Key key, int times = 1);
// Logs in as root and opens the network window.
bool OpenNetwork(HostConsole& host);
// Types into the focused field and waits for the screen to show it.
void TypeShown(HostConsole& host, const std::string& text);
// Enter on the open dialog showing `mark`, then back at the first entry from `downs` below it.
void Accept(HostConsole& host, const std::string& mark, int downs);
// From the first entry: new suffixes typed into their dialog and accepted.
void EditSuffixes(HostConsole& host, const std::string& text);
// From the first entry: one IPv4 field (`fieldDowns` below the static choice) retyped and accepted.
void EditIpv4Field(HostConsole& host, int fieldDowns, const std::string& text);
// Logs in as root and opens Test Management Network.
bool OpenTest(HostConsole& host);
// From the test dialog's first field: each field emptied and retyped where `texts` has one (nullptr
// keeps it).
void Fill(HostConsole& host, std::initializer_list<const char*> texts);
// Waits for a message dialog with its title and its text both painted.
bool ShowsMessage(HostConsole& host, const std::string& title, const std::string& text);
// Esc and the confirmation, answered with `answer`.
void LeaveAnswering(HostConsole& host, const std::string& answer);
// Waits for the main menu after the window.
bool BackInMenu(HostConsole& host);

// A value of the running host's store, parsed.
nlohmann::json StoreJson(const HostConsole& host, const std::string& pointer);
// A file of the host's disk by its path inside the host.
std::string HostFile(const HostConsole& host, const std::string& path);
// A host, started again after each end of its console, whose first two name servers never answer: a
// resolve test has the host's name out of /etc/hosts for about two seconds. Nothing but the console
// writes its hosts file after it booted.
std::unique_ptr<HostConsole> MakeHostWithSilentNameServers();
// Whether the resolve test's backup of the hosts file is in the host.
bool HostHasHostsBackup(const HostConsole& host);
// Whether an address answers a ping inside the running host.
bool Answers(const HostConsole& host, const std::string& address);
// The syslog's lines, each the first containing its text after the one before; true when all are found.
bool InOrder(const HostConsole& host, const std::vector<std::string>& texts);

}  // namespace KovoE2e
