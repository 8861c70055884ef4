#include "text/TextArea.h"

namespace Kovo {

TextArea::TextArea(Window* parent, int dx, int dy, int width, int height, int background, int foreground)
    : Window(parent, dx, dy, width, height, background, foreground) {
    // Dark grey and light grey sit on the numbers of cyan and green, whose shades start-up redefines.
    _colors = {
        {"white", 7}, {"black", 0}, {"dark-grey", 6}, {"light-grey", 2}, {"yellow", 3}, {"red", 1},
    };
    _variables = VariableTable();
}

const MarkupVariables& TextArea::VariableTable() {
    static const MarkupVariables table = {
        {"ip", &GetIpValue},
        {"ssl-thumbprint", &GetSSLThumbprintValue},
        {"ssh-dsa-fingerprint", &GetSSHDsaKeyFingerprintValue},
        {"ssh-rsa-fingerprint", &GetSSHRsaKeyFingerprintValue},
        {"serial-number", &GetSerialNumberValue},
        {"hostname", &GetHostnameValue},
        {"qorproduct", &GetQORProduct},
        {"qorversion", &GetQORVersion},
        {"supportstart", &GetSupportStart},
        {"supportperiod", &GetSupportPeriod},
        {"memory", &GetSystemMemory},
        {"servicetag", &GetServiceTag},
        {"assettag", &GetAssetTag},
        {"BIOSversion", &GetBIOSVersion},
        {"BMCversion", &GetBMCVersion},
        {"CPLDversion", &GetCPLDVersion},
        {"PLSAversion", &GetPLSAVersion},
    };
    return table;
}

void TextArea::SetActive(bool active) {
    _active = active;
    Window::SetActive(active);
    Render();
}

void TextArea::SetText(const char* text) {
    SetText(std::string(text ? text : ""));
}

void TextArea::SetText(const std::string& text) {
    SetText(text, std::string(), 0);
}

void TextArea::SetText(const std::string& markup, std::string plain, int column) {
    _text = markup;
    _plain = std::move(plain);
    _plainColumn = column;
    Render();
}

void TextArea::AppendText(const char* text) {
    AppendText(std::string(text ? text : ""));
}

void TextArea::AppendText(const std::string& text) {
    _text += text;
    Render();
}

void TextArea::Render() {
    Erase();
    std::string laidOut = LayoutMarkup(_text, Width(), _variables);
    DrawMarkup({Handle(), Width(), Height(), Background(), Foreground(), _active}, laidOut, _colors);
    if (WINDOW* window = Handle()) {
        for (std::size_t i = 0; i < _plain.size() && _plainColumn + static_cast<int>(i) < Width(); ++i) {
            const int column = _plainColumn + static_cast<int>(i);
            const chtype attributes = mvwinch(window, 0, column) & A_ATTRIBUTES;
            mvwaddch(window, 0, column, static_cast<unsigned char>(_plain[i]) | attributes);
        }
    }
    Refresh();
}

}  // namespace Kovo
