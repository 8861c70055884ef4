#pragma once

// A host that writes into one list, in order, every program, command line, question and event the
// console asks of it and every platform operation that changes something ("<interface>.<operation>"),
// and answers with scripted statuses. Its platform is the Halvor one over a scratch store, whose
// "/simulation/faults" make operations fail as on a simulated host.

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "../access/LoginTestScreen.h"
#include "../platform/TempDir.h"
#include "frames/HostAccess.h"
#include "platform/faults/FaultingHostFactory.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/HostsFile.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/HalvorHostFactory.h"
#include "platform/zenkctl/StoreFaults.h"
#include "platform/zenkctl/ZenkNicRuntime.h"

namespace Kovo::Testing {

// The console's syslog lines go to `into` from now on (LogCapture.cpp), until released.
void CaptureLog(std::vector<std::string>* into);
void ReleaseLog(const std::vector<std::string>* from);

using Calls = std::vector<std::string>;
using Store = std::shared_ptr<ZenkCtl::Store::HostStore>;

// Thrown where the real host would end the process (it went down).
struct HostWentDown {};

inline const std::string kF2 = "\033OQ";
inline const std::string kF11 = "\033[23~";

// A network change's tests ping on threads of their own, which nobody joins: only the main thread's
// calls are recorded, so the list is never written from two threads.
inline const std::thread::id kMainThread = std::this_thread::get_id();
inline bool OnMainThread() {
    return std::this_thread::get_id() == kMainThread;
}

// The platform asks it before each operation that can fail: it notes those that are no reads, then
// answers with the store's fault.
class RecordingFaults : public HostCtl::Faults::FaultSource {
  public:
    RecordingFaults(Store store, Calls& calls) : _store(std::move(store)), _calls(calls) {}
    std::optional<std::string> Injected(const char* operation) const override {
        const char* name = std::strchr(operation, '.') + 1;
        const bool read = !std::strncmp(name, "Get", 3) || !std::strncmp(name, "Has", 3) ||
                          !std::strcmp(name, "UpdateManagementInterface");
        if (!read && OnMainThread()) _calls.push_back(operation);
        return _store.Injected(operation);
    }

  private:
    ZenkCtl::StoreFaultSource _store;
    Calls& _calls;
};

// What a host that undoes a network change by itself does with one (the Halvor platform cannot).
struct ChangeScript {
    bool offered = false;
    int secondsLeft = 120;
    std::string applyFailure;  // Apply fails with it when set
};

class ScriptedChange : public HostCtl::Network::NetworkChange {
  public:
    ScriptedChange(const ChangeScript& script, Calls& calls) : _script(script), _calls(calls) {}
    void Apply() override {
        _calls.push_back("Change.Apply");
        if (!_script.applyFailure.empty()) throw HostCtl::Lib::HostCtlException(_script.applyFailure);
    }
    int SecondsLeft() override { return _script.secondsLeft; }
    void Keep() override { _calls.push_back("Change.Keep"); }
    std::vector<std::string> RollBack() override {
        _calls.push_back("Change.RollBack");
        return {"e0"};
    }

  private:
    const ChangeScript& _script;
    Calls& _calls;
};

// The platform's network with the scripted change in place of its own none.
class UndoingNetwork : public HostCtl::Network::NetworkInfo {
  public:
    using Inner = std::unique_ptr<HostCtl::Network::NetworkInfo>;
    UndoingNetwork(Inner inner, const ChangeScript& script, Calls& calls)
        : _in(std::move(inner)), _script(script), _calls(calls) {}
    std::unique_ptr<HostCtl::Network::NetworkChange> BeginChange(int seconds) override {
        _calls.push_back("Network.BeginChange " + std::to_string(seconds));
        return std::make_unique<ScriptedChange>(_script, _calls);
    }
    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> GetPnics() override { return _in->GetPnics(); }
    void UpdateManagementInterface() override { _in->UpdateManagementInterface(); }
    std::unique_ptr<HostCtl::Network::ZenkNic> GetManagementInterface() override {
        return _in->GetManagementInterface();
    }
    std::string GetManagementInterfaceName() override { return _in->GetManagementInterfaceName(); }
    bool IsZenkIpv6Enabled() override { return _in->IsZenkIpv6Enabled(); }
    void SetZenkIpv6Enabled(bool enabled) override { _in->SetZenkIpv6Enabled(enabled); }
    bool GetPendingZenkIpv6Enabled() override { return _in->GetPendingZenkIpv6Enabled(); }
    void DisableNetDumper() override { _in->DisableNetDumper(); }
    bool IsNetDumperEnabled() override { return _in->IsNetDumperEnabled(); }
    void ClearNetworkConfig() override { _in->ClearNetworkConfig(); }
    void AutoConfigNetwork() override { _in->AutoConfigNetwork(); }

  private:
    Inner _in;
    const ChangeScript& _script;
    Calls& _calls;
};

class RecordingHost : public HostAccess {
  public:
    // Without a store, no platform object can be had. With `log`, the console's log lines join the calls
    // ("log: ..." for information, "error: ..." for errors) while the host lives.
    explicit RecordingHost(Store store = nullptr, bool log = false)
        : HostAccess(store ? std::make_unique<HostCtl::Faults::FaultingHostFactory>(
                                 std::make_unique<ZenkCtl::HalvorHostFactory>(store),
                                 std::make_shared<RecordingFaults>(store, calls))
                           : nullptr),
          _log(log) {
        if (_log) CaptureLog(&calls);
    }
    ~RecordingHost() override {
        if (_log) ReleaseLog(&calls);
    }

    // "<program>: argv...", "shell: <line>", "exec: <line>", "query: <path>", "event: <text>",
    // "powerOffVms[ --terminate]", "thread", "wait", "spin", "refresh", and the platform's operations.
    Calls calls;
    std::map<std::string, int> status;            // per call line; 0 for anything not listed
    std::map<std::string, std::string> output;    // standard output of captured runs, per call line
    std::map<std::string, std::string> failures;  // what ExecReportingFailure says, per call line
    std::map<std::string, bool> answers;          // of Query per path; false when not listed
    int threadError = 0;                          // what StartThread reports
    ChangeScript change;
    // Called right after a call has been recorded, with its line.
    std::function<void(const std::string&)> onCall;

    int Run(const std::string& program, const std::vector<std::string>& argv) override {
        return Record(program + ":" + Join(argv));
    }
    int RunCaptured(const std::string& program, const std::vector<std::string>& argv, std::string& out,
                    std::string& err, int capacity) override {
        const std::string line = program + ":" + Join(argv);
        out = output[line].substr(0, static_cast<size_t>(capacity));
        err.clear();
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
        Record("exec: " + commandLine);
        return failures["exec: " + commandLine];
    }
    void PostEvent(const std::string& text) override { Record("event: " + text); }
    int StartThread(std::function<void()>) override {
        Record("thread");
        return threadError;
    }
    void RefreshAgent() override { Record("refresh"); }
    // The host's name table is the machine's own /etc/hosts under the Halvor platform: no unit test may
    // reach it.
    std::unique_ptr<HostCtl::Network::HostsFile> HostsFile() const override {
        throw HostCtl::Lib::HostCtlException("a unit test has no hosts file");
    }
    std::unique_ptr<HostCtl::Network::NetworkInfo> Network() const override {
        if (!change.offered) return HostAccess::Network();
        return std::make_unique<UndoingNetwork>(HostAccess::Network(), change, const_cast<Calls&>(calls));
    }
    void WaitForHostDown(Window*) override {
        Record("wait");
        throw HostWentDown{};
    }
    void SpinForHostDown() override {
        Record("spin");
        throw HostWentDown{};
    }

    // The calls from the first one starting with `from` on.
    Calls From(const std::string& from) const {
        for (auto it = calls.begin(); it != calls.end(); ++it)
            if (it->rfind(from, 0) == 0) return Calls(it, calls.end());
        return {};
    }
    // The calls starting with `prefix`.
    Calls StartingWith(const std::string& prefix) const {
        Calls found;
        for (const std::string& call : calls)
            if (call.rfind(prefix, 0) == 0) found.push_back(call);
        return found;
    }
    bool Made(const std::string& call) const {
        return std::find(calls.begin(), calls.end(), call) != calls.end();
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
        if (!OnMainThread()) return result;
        calls.push_back(line);
        if (onCall) onCall(line);
        return result;
    }
    bool _log;
};

// A host configuration store of its own, removed with the test.
class ScratchStore {
  public:
    explicit ScratchStore(const nlohmann::json& document)
        : _store(std::make_shared<ZenkCtl::Store::HostStore>(_dir.File("host.json"))) {
        _store->Replace(document);
    }
    const Store& Get() const { return _store; }
    nlohmann::json At(const std::string& pointer) const { return _store->Get(pointer); }
    void Fault(const std::string& operation, const std::string& text) {
        _store->Update([&](nlohmann::json& d) { d["simulation"]["faults"][operation] = text; });
    }

  private:
    TempDir _dir;
    Store _store;
};

// A host's document after its boot: every kernel interface runs its configuration.
inline nlohmann::json Booted(nlohmann::json document) {
    std::vector<std::string> names;
    for (const auto& nic : document["network"]["zenkNics"]) names.push_back(nic["name"].get<std::string>());
    for (const auto& name : names) ZenkCtl::Network::ZenkNicRuntime::Apply(document, name);
    return document;
}

#ifdef KOVO_SCENARIOS
// A scenario of the simulated host as a store document.
inline nlohmann::json Scenario(const std::string& name) {
    std::ifstream in(std::string(KOVO_SCENARIOS) + "/" + name + ".json");
    return nlohmann::json::parse(in);
}
#endif

}  // namespace Kovo::Testing
