#pragma once

#include <cstdint>
#include <string>

#include "frames/Frame.h"
#include "frames/HostAccess.h"

namespace Kovo {

class TextArea;

// The idle screen: who the host is, where to manage it from, warnings about its state, and the keys
// that lead to a login. It owns the session round trip and ends idle sessions.
class WelcomeWindow : public Frame {
  public:
    explicit WelcomeWindow(HostAccess& host);
    int HandleKey() override;
    void Notification() override;

    // Builds the panels and areas anew and fills them from the host.
    void Build();

    // "16", "7.7": the memory size in the largest unit, one truncated decimal, single precision.
    static std::string MemoryLine(uint64_t totalBytes);
    // The management addresses block, from the heading down to the sorted IPv6 lines.
    std::string AddressText();

  private:
    bool LoginAllowed();
    // One login round: the login dialog, then the menu (F2) or the shutdown dialog (F12).
    void RunSession(bool customize);
    std::string ProductBlock() const;
    std::string HardwareLine() const;
    std::string ProcessorLine() const;
    void FillIdentity();
    std::string WarningText();

    HostAccess& _host;
    Window* _upper = nullptr;
    Window* _lower = nullptr;
    TextArea* _sevenRow = nullptr;
    TextArea* _product = nullptr;
    TextArea* _oneRow = nullptr;
    TextArea* _twoRow = nullptr;
    TextArea* _warning = nullptr;
    TextArea* _keyLine = nullptr;
    bool _dhcpWaiting = false;
};

}  // namespace Kovo
