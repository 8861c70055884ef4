#include "network/RunTestDialog.h"

#include "frames/Footers.h"
#include "terminal/Colors.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {
// The display stays responsive while a test runs: keys are looked at this often.
constexpr int kPollMs = 10;
}  // namespace

RunTestDialog::RunTestDialog(Frame* parent, TestTargets targets, std::string interface, HostAccess& host)
    : Dialog(parent,
             {76, 16, 5, StringId::TestingNetworkTitle, StringId::TestingNetworkText, Footer::kCancel}),
      _targets(std::move(targets)),
      _interface(std::move(interface)),
      _host(host),
      _lines(AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)) {}

bool RunTestDialog::Await(const std::string& line, const TestResult& result) {
    // The fields take no markup characters, so the lines can be markup.
    _lines.SetText(_done + line);
    Refresh();
    while (result->load() == kTestRunning) {
        if (PollKey(kPollMs) == kEsc) return false;
    }
    _done += line + " " + Strings()->GetString(result->load() == 0 ? StringId::Ok : StringId::Failed) + "\n";
    _lines.SetText(_done);
    Refresh();
    return true;
}

int RunTestDialog::HandleKey() {
    for (const std::string& address : _targets.pings) {
        if (address.empty()) continue;
        const std::string command =
            NetworkTest::PingCommand(_interface, NetworkTest::PingTarget(address, _interface));
        if (!Await(Strings()->GetString(StringId::PingingAddress) + std::string(" (") + address + ").",
                   NetworkTest::StartPing(_host, command)))
            return 0;
    }
    if (!_targets.name.empty()) {
        if (!Await(
                Strings()->GetString(StringId::ResolvingHostname) + std::string(" (") + _targets.name + ").",
                NetworkTest::StartResolve(_host, _targets.name)))
            return 0;
    }
    SetFooter(Footer::kOk);
    for (int key = 0; !IsEnter(key);) key = GetKey(this, true);
    return 1;
}

}  // namespace Kovo
