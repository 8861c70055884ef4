#include "network/KeepNetworkDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "terminal/Colors.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {
// Keys, the tests and the seconds left are looked at this often.
constexpr int kPollMs = 10;
}  // namespace

KeepNetworkDialog::KeepNetworkDialog(Frame* parent, HostCtl::Network::NetworkChange& change,
                                     TestTargets targets, std::string interface, HostAccess& host)
    : Dialog(parent,
             {76, 18, 6, StringId::KeepNetworkTitle, StringId::KeepNetworkText, Footer::kKeepRestore}),
      _change(change),
      _targets(std::move(targets)),
      _interface(std::move(interface)),
      _host(host),
      _lines(AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)) {}

TestResult KeepNetworkDialog::StartNext(std::string& line) {
    const StringFactory& strings = *Strings();
    while (_nextTest < _targets.pings.size()) {
        const std::string& address = _targets.pings[_nextTest++];
        if (address.empty()) continue;
        line = strings.GetString(StringId::PingingAddress) + std::string(" (") + address + ").";
        return NetworkTest::StartPing(
            _host, NetworkTest::PingCommand(_interface, NetworkTest::PingTarget(address, _interface)));
    }
    if (_nextTest == _targets.pings.size()) {
        ++_nextTest;
        if (!_targets.name.empty()) {
            line = strings.GetString(StringId::ResolvingHostname) + std::string(" (") + _targets.name + ").";
            return NetworkTest::StartResolve(_host, _targets.name);
        }
    }
    return nullptr;
}

void KeepNetworkDialog::Show(const std::string& running, int secondsLeft) {
    const StringFactory& strings = *Strings();
    // The test lines take no markup characters (the fields refuse them), so they can be markup.
    std::string text = _done + (running.empty() ? "" : running + "\n") + "\n" +
                       strings.GetString(StringId::KeepNetworkQuestion) + "\n" +
                       strings.GetString(StringId::SecondsUntilRollback) + " " + std::to_string(secondsLeft);
    // Drawn again only when something changed: no flicker while nothing happens.
    if (text == _shown) return;
    _shown = text;
    _lines.SetText(text);
    Refresh();
}

int KeepNetworkDialog::Keep() {
    try {
        _change.Keep();
        LogInfo("Network configuration kept");
        return 1;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Keeping the network configuration failed: ", e);
        return 0;
    }
}

int KeepNetworkDialog::HandleKey() {
    const StringFactory& strings = *Strings();
    std::string line;
    TestResult running = StartNext(line);
    for (;;) {
        if (running && running->load() != kTestRunning) {
            _done +=
                line + " " + strings.GetString(running->load() == 0 ? StringId::Ok : StringId::Failed) + "\n";
            running = StartNext(line);
        }
        const int secondsLeft = _change.SecondsLeft();
        if (secondsLeft <= 0) {
            LogInfo("No answer in time: the previous network configuration returns");
            return 0;
        }
        Show(running ? line : std::string(), secondsLeft);
        switch (PollKey(kPollMs)) {
            case 'Y':
            case 'y':
                return Keep();
            case 'N':
            case 'n':
            case kEsc:
                return 0;
            default:
                break;
        }
    }
}

}  // namespace Kovo
