#include "frames/Frame.h"

#include "terminal/KovoTimeout.h"
#include "text/StringFactory.h"

namespace Kovo {

Frame* Frame::fgFrame = nullptr;

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
    {
        // The parent greyed and this frame over it reach the terminal as one frame.
        const PaintBatch oneFrame;
        if (_parentFrame) {
            _parentFrame->SetActive(false);
            _parentFrame->Refresh();
        }
        SetActive(true);
    }
    fgFrame = this;
    int result;
    try {
        result = HandleKey();
    } catch (const KovoTimeout&) {
        // Nothing is reactivated on the way out: the welcome window repaints everything.
        fgFrame = nullptr;
        throw;
    } catch (...) {
        // A failure passing through to a caller that catches it must leave that caller as it was:
        // its colours, its cursor and the key reader's foreground frame.
        Reactivate();
        throw;
    }
    Reactivate();
    return result;
}

void Frame::Reactivate() {
    const PaintBatch oneFrame;
    if (_parentFrame) {
        _parentFrame->SetActive(true);
        _parentFrame->Refresh();
    }
    fgFrame = _parentFrame;
}

}  // namespace Kovo
