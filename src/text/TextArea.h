#pragma once

#include <cstdint>
#include <string>

#include "terminal/Window.h"
#include "text/MarkupDraw.h"
#include "text/MarkupLayout.h"

namespace Kovo {

// A rectangle that shows marked-up text: colour tags, align tags and host-value variables. The text is
// kept and laid out afresh on every render, so variables always show current values.
class TextArea : public Window {
  public:
    TextArea(Window* parent, int dx, int dy, int width, int height, int background = -1, int foreground = -1);
    ~TextArea() override = default;

    // Also repaints: an inactive area shows its text without colour tags.
    void SetActive(bool active) override;

    void SetText(const char* text);
    void SetText(const std::string& text);
    // Markup with `plain` written over its first row from `column`, character for character, in the
    // colours the markup gave those cells: what an operator typed is shown, never interpreted.
    void SetText(const std::string& markup, std::string plain, int column);
    void AppendText(const char* text);
    void AppendText(const std::string& text);

    const std::string& Text() const { return _text; }
    const MarkupColors& Colors() const { return _colors; }
    const MarkupVariables& Variables() const { return _variables; }

    // Every variable markup can name, with the host value that serves it.
    static const MarkupVariables& VariableTable();

    // Host values that texts can name as variables; each call reads the host anew.
    static std::string GetIpValue();
    static std::string GetSSLThumbprintValue();
    static std::string GetSSHDsaKeyFingerprintValue();
    static std::string GetSSHRsaKeyFingerprintValue();
    static std::string GetSerialNumberValue();
    static std::string GetHostnameValue();
    static std::string GetQORProduct();
    static std::string GetQORVersion();
    static std::string GetSupportStart();
    static std::string GetSupportPeriod();
    static std::string GetSystemMemory();
    static std::string GetServiceTag();
    static std::string GetAssetTag();
    static std::string GetBIOSVersion();
    static std::string GetBMCVersion();
    static std::string GetCPLDVersion();
    static std::string GetPLSAVersion();

  private:
    void Render();

    std::string _text;
    std::string _plain;
    int _plainColumn = 0;
    bool _active = true;
    MarkupColors _colors;
    MarkupVariables _variables;
};

// "8 GB", "8.2 GB": the memory size rounded up to a quarter GiB, with one truncated decimal when needed.
std::string FormatMemory(uint64_t totalPages, uint64_t pageSize);

}  // namespace Kovo
