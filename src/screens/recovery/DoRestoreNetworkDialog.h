#pragma once

#include <string>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

class TextArea;

// "Restore Network Settings": the factory restore, a line per step. Running virtual machines are
// powered off first, once the operator agrees (0 when not: nothing changed); then the network dump
// collector is switched off and the network cleared and configured afresh, which is skipped when the
// machines could not be powered off. Waits for Enter at the end and returns 1.
class DoRestoreNetworkDialog : public Dialog {
  public:
    explicit DoRestoreNetworkDialog(Frame* parent, HostAccess& host);

    int HandleKey() override;

  private:
    // False when the machines could not be powered off.
    bool PowerOffVms();
    void DisableNetDumper();
    void AutoConfigure();
    void Append(const std::string& text);

    HostAccess& _host;
    TextArea& _progress;
    std::string _text;
};

}  // namespace Kovo
