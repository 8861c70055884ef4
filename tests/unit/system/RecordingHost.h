#pragma once

// A host for the system-action screens that records every call in order and answers with scripted
// statuses, plus a key-script screen to run the screens' real loops on.

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "../access/LoginTestScreen.h"
#include "../platform/TempDir.h"
#include "frames/HostAccess.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/HostsFile.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/StoreFaults.h"

namespace Kovo::Testing {

// Thrown where the real host would end the process (it went down).
struct HostWentDown {};

inline const std::string kF2 = "\033OQ";
inline const std::string kF11 = "\033[23~";

class RecordingHost : public HostAccess {
  public:
    // Over the Halvor platform on `store`, whose operations fail as its "/simulation/faults" say, as on a
    // simulated host; without a store, no platform object can be had.
    explicit RecordingHost(std::shared_ptr<ZenkCtl::Store::HostStore> store = nullptr)
        : HostAccess(store ? ZenkCtl::MakeSimulatedHalvorPlatform(std::move(store)) : nullptr) {}

    // Every call as one line: "<program>: argv..." for programs, "shell: <line>", "exec: <line>",
    // "query: <path>", "event: <text>", "powerOffVms[ --terminate]", "thread", "wait", "spin".
    std::vector<std::string> calls;
    // Status per call line; 0 for anything not listed.
    std::map<std::string, int> status;
    // Standard output per call line, for captured runs.
    std::map<std::string, std::string> output;
    std::map<std::string, std::string> errorOutput;
    // What ExecReportingFailure says went wrong, per call line; nothing for a line not listed.
    std::map<std::string, std::string> failures;
    // Answers of Query per path; false when not listed.
    std::map<std::string, bool> answers;
    // Error number StartThread reports (0: the thread started).
    int threadError = 0;
    // Called right after a call has been recorded, with its line.
    std::function<void(const std::string&)> onCall;

    int Run(const std::string& program, const std::vector<std::string>& argv) override {
        return Record(program + ":" + Join(argv));
    }
    int RunCaptured(const std::string& program, const std::vector<std::string>& argv, std::string& out,
                    std::string& err, int capacity) override {
        const std::string line = program + ":" + Join(argv);
        out = output[line].substr(0, static_cast<size_t>(capacity));
        err = errorOutput[line].substr(0, static_cast<size_t>(capacity));
        return Record(line);
    }
    int Shell(const std::string& commandLine) override { return Record("shell: " + commandLine); }
    void PowerOffVms(bool graceful) override { Record(graceful ? "powerOffVms" : "powerOffVms --terminate"); }
    bool Query(const char* path) override {
        Record(std::string("query: ") + path);
        return answers[path];
    }
    int Exec(const std::string& commandLine) override { return Record("exec: " + commandLine); }
    std::string ExecReportingFailure(const std::string& commandLine) override {
        const std::string line = "exec: " + commandLine;
        Record(line);
        return failures[line];
    }
    void PostEvent(const std::string& text) override { Record("event: " + text); }
    int StartThread(std::function<void()>) override {
        Record("thread");
        return threadError;
    }
    // The host's name table is the machine's own /etc/hosts under the Halvor platform: no unit test may
    // reach it (a resolve test started by a screen fails here instead).
    std::unique_ptr<HostCtl::Network::HostsFile> HostsFile() const override {
        throw HostCtl::Lib::HostCtlException("a unit test has no hosts file");
    }
    void WaitForHostDown(Window*) override {
        Record("wait");
        throw HostWentDown{};
    }
    void SpinForHostDown() override {
        Record("spin");
        throw HostWentDown{};
    }

    // The calls whose line starts with `prefix`.
    std::vector<std::string> CallsStartingWith(const std::string& prefix) const {
        std::vector<std::string> found;
        for (const std::string& call : calls)
            if (call.rfind(prefix, 0) == 0) found.push_back(call);
        return found;
    }

  private:
    static std::string Join(const std::vector<std::string>& argv) {
        std::string text;
        for (const std::string& arg : argv) text += " " + arg;
        return text;
    }
    int Record(const std::string& line) {
        auto found = status.find(line);
        const int result = found == status.end() ? 0 : found->second;
        // A network change's tests ping on threads of their own, which nobody joins: only the main
        // thread's calls are recorded, so the list is never written from two threads.
        if (std::this_thread::get_id() != _main) return result;
        calls.push_back(line);
        if (onCall) onCall(line);
        return result;
    }
    const std::thread::id _main = std::this_thread::get_id();
};

// A host configuration store of its own, removed with the test.
class ScratchStore {
  public:
    explicit ScratchStore(const nlohmann::json& document)
        : _store(std::make_shared<ZenkCtl::Store::HostStore>(_dir.File("host.json"))) {
        _store->Replace(document);
    }
    const std::shared_ptr<ZenkCtl::Store::HostStore>& Get() const { return _store; }
    nlohmann::json At(const std::string& pointer) const { return _store->Get(pointer); }

  private:
    TempDir _dir;
    std::shared_ptr<ZenkCtl::Store::HostStore> _store;
};

// A window's text (by default the whole composed screen), one line per row.
inline std::string ScreenText(WINDOW* win = nullptr) {
    if (!win) win = curscr;
    std::string text;
    for (int y = 0; y < getmaxy(win); ++y) {
        for (int x = 0; x < getmaxx(win); ++x) text += static_cast<char>(mvwinch(win, y, x) & A_CHARTEXT);
        text += "\n";
    }
    return text;
}

}  // namespace Kovo::Testing
