#include "app/Frame.h"

#include "app/KovoTimeout.h"
#include "text/StringFactory.h"

namespace Kovo {

Frame* Frame::fgFrame = nullptr;
uint32_t Frame::_idleTimeout = 600;
bool Frame::_loggedIn = false;
bool Frame::_markForRestart = false;
sigset_t Frame::_signalSet;
int Frame::_signalPipe[2] = {-1, -1};
std::string Frame::_loginName;
bool Frame::_isLoggedWithSmartCard = false;
std::string Frame::_smartCardLoginId;
bool Frame::_isUserPasswordEmpty = false;
std::string Frame::_cardInfo;

Frame::Frame(Frame* parent, int x, int y, int width, int height, int background, int foreground)
    : Window(x, y, width, height, background, foreground),
      _parentFrame(parent),
      _strings(GetStringFactory("en_US")) {}

Frame::~Frame() {
    if (fgFrame == this) fgFrame = nullptr;
}

void Frame::Notification() {}

int Frame::RunModal() {
    fgFrame = nullptr;
    if (_parentFrame) {
        _parentFrame->SetActive(false);
        _parentFrame->Refresh();
    }
    SetActive(true);
    fgFrame = this;
    int result;
    try {
        result = HandleKey();
    } catch (const KovoTimeout&) {
        // Nothing is reactivated on the way out: the welcome window repaints everything.
        fgFrame = nullptr;
        throw;
    }
    if (_parentFrame) {
        _parentFrame->SetActive(true);
        _parentFrame->Refresh();
    }
    fgFrame = _parentFrame;
    return result;
}

}  // namespace Kovo
