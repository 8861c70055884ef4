#pragma once

#include <string>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"
#include "network/NetworkTest.h"
#include "network/TestDialog.h"

namespace HostCtl::Network {
class NetworkChange;
}

namespace Kovo {

class TextArea;

// "Keep Network Configuration", once a change is in place on a host that undoes it by itself: runs the
// tests of "Test Management Network" a line each, and asks meanwhile whether to keep the configuration,
// with the seconds left until the host goes back. Y keeps it (1). N, Esc, the time running out, or a keep
// the host refuses leave the change to be rolled back (0). Keys are taken while the tests run: an
// operator who already knows need not wait for them.
class KeepNetworkDialog : public Dialog {
  public:
    KeepNetworkDialog(Frame* parent, HostCtl::Network::NetworkChange& change, TestTargets targets,
                      std::string interface, HostAccess& host);

    int HandleKey() override;

  private:
    // The next test started, or null when none is left.
    TestResult StartNext(std::string& line);
    void Show(const std::string& running, int secondsLeft);
    int Keep();

    HostCtl::Network::NetworkChange& _change;
    TestTargets _targets;
    std::string _interface;
    HostAccess& _host;
    TextArea& _lines;
    std::size_t _nextTest = 0;
    std::string _done;
    std::string _shown;
};

}  // namespace Kovo
