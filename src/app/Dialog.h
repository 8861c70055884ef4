#pragma once

#include <string>

#include "app/Frame.h"

namespace Kovo {

class TextArea;

// A centred pop-up: a dark-grey header with title and message, an amber body with an optional content
// window for item lists, and a footer line of key hints.
class Dialog : public Frame {
public:
    Dialog(Frame* parent, int width, int height, int headerHeight);

    void SetActive(bool active) override;

    void SetTitle(const std::string& text);
    void SetText(const std::string& text);
    void SetFooter(const std::string& text);

    Window* Header() const { return _header; }
    Window* Body() const { return _body; }
    // Null when the body is four rows or less.
    Window* Content() const { return _content; }
    TextArea* Title() const { return _title; }
    TextArea* Message() const { return _message; }
    TextArea* Footer() const { return _footer; }

private:
    // All owned by the window tree (children are destroyed with their parent).
    Window* _header;
    Window* _body;
    Window* _content = nullptr;
    TextArea* _title;
    TextArea* _message;
    TextArea* _footer;
};

}  // namespace Kovo
