#pragma once

#include <string>
#include <vector>

namespace HostCtl {
class HostPrograms;
}

namespace Kovo {

// Every program below is named by its documented path and argument vector; the host's platform says
// what each one is on this host. Start-up installs the chosen platform's programs once (they must live
// as long as the process); until then, and for null, a program runs as named.
void InstallHostPrograms(const HostCtl::HostPrograms* programs);

// Runs a host program as a child: pipes for its three standard streams, the environment
// "PYTHONHOME=/" alone, no other descriptor of ours, a session of its own (no key at the console's
// terminal interrupts it, and it outlives a hang-up), optional input, captured output cut to the given
// capacities (lengths are in/out: capacity in, bytes stored out; buffers may be null) and an optional
// time-out in seconds (0 or less waits without limit). Returns the exit status, or -1 when the program
// could not be started or did not end normally.
int RunCommand(const char* program, const char* const argv[], char* output = nullptr,
               int* outputLength = nullptr, char* error = nullptr, int* errorLength = nullptr,
               const char* input = nullptr, int inputLength = 0, int timeout = 0);

// The same with the argument vector as strings (argv[0] included), keeping at most `capacity` bytes of
// each output stream in `output` and `error` (none when `capacity` is 0).
int RunCaptured(const std::string& program, const std::vector<std::string>& argv, std::string& output,
                std::string& error, int capacity);

// A program that takes over the console's terminal, such as the log pager: it keeps the console's
// standard streams and environment and gets signals the ordinary way, as a process group of its own in
// the terminal's foreground, so the keys it reads (Ctrl-C among them) are its own. Waits for it (one that
// suspends itself is continued), takes the terminal back, and returns its exit status, or -1 when it
// could not be started or did not end normally.
int RunOnTerminal(const char* program, const char* const argv[]);

// A command line through "/bin/sh -c": no input, no capture, no time-out.
int RunShell(const std::string& commandLine);

// Runs "/bin/hcl-cmd" with argv = {"hcl-cmd", "-U", user, command path, ...}; when the tool cannot act
// as that user (status 255) it runs once more as the console's own user.
int RunHclCmd(std::vector<std::string> argv, char* output = nullptr, int* outputLength = nullptr,
              char* error = nullptr, int* errorLength = nullptr, const char* input = nullptr,
              int inputLength = 0);

// Asks the host tool a yes/no question as the console's own user: true when its answer starts "true".
bool HclCmdQuery(const char* commandPath);
// The host tool's yes: the answer begins with the four characters "true".
bool IsTrueAnswer(const char* output, int length);

// Makes the host agent re-read the host's state after a change.
void RefreshHostAgent();

// The host's auto-stop sequence, then the virtual-machine power-off helper (forced when not graceful).
int PowerOffVms(bool graceful);

// Initialises the host-event library; returns its non-zero error code on failure.
int InitEvents();

}  // namespace Kovo
