#include "terminal/Window.h"

#include <algorithm>
#include <cstdlib>

#include "terminal/Colors.h"

namespace Kovo {

bool Window::_cursor = false;
int Window::_xCursor = 0;
int Window::_yCursor = 0;

Window::Window(int x, int y, int width, int height, int background, int foreground)
    : _win(newwin(height, width, y, x)),
      _x(x),
      _y(y),
      _width(width),
      _height(height),
      _background(background),
      _foreground(foreground) {
    ApplyBackground();
}

Window::Window(Window* parent, int dx, int dy, int width, int height, int background, int foreground)
    : _parent(parent),
      _x(parent->_x + dx),
      _y(parent->_y + dy),
      _width(width),
      _height(height),
      _background(background == -1 ? parent->_background : background),
      _foreground(foreground == -1 ? parent->_foreground : foreground) {
    _win = parent->_win ? subwin(parent->_win, height, width, _y, _x) : nullptr;
    parent->_children.push_back(this);
    ApplyBackground();
}

Window::~Window() {
    // Each child's destructor unlinks itself from _children, so always take the last one.
    while (!_children.empty()) delete _children.back();
    if (_parent) {
        auto& siblings = _parent->_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
    }
    if (_win) delwin(_win);
}

Window* Window::AddChild(int dx, int dy, int width, int height, int background, int foreground) {
    return new Window(this, dx, dy, width, height, background, foreground);
}

void Window::ApplyBackground() {
    if (!_win) return;
    attr_t attr = _active ? ColorAttr(_background, _foreground) : ColorAttr(kBlack, kDarkGrey);
    wbkgd(_win, ' ' | attr);
    wattrset(_win, attr);
}

void Window::ReapplyChildBackgrounds() {
    for (Window* child : _children) {
        if (child->_win) {
            // curses leaves a window alone when its background does not change, so go through plain.
            const chtype background = getbkgd(child->_win);
            if (background & A_ATTRIBUTES & ~A_COLOR) {
                wbkgd(child->_win, background & ~(A_ATTRIBUTES & ~A_COLOR));
                wbkgd(child->_win, background);
            }
        }
        child->ReapplyChildBackgrounds();
    }
}

void Window::SetActive(bool active) {
    _active = active;
    if (!active && !_parent) {
        _savedCursor = _cursor;
        _savedCursorX = _xCursor;
        _savedCursorY = _yCursor;
        SetCursor(false);
    }
    // Children first: curses recolours only the cells that still carry a window's previous background,
    // and a child's cells share memory with its parent's, so the parent must not reach them first.
    for (Window* child : std::vector<Window*>(_children)) child->SetActive(active);
    ApplyBackground();
    // Setting a background strips its attributes from every cell of the window, its children's included;
    // colours survive, but without colours the standout that marks a selection does not. Once the whole
    // tree is done, the children put theirs back, inner windows last.
    if (!_parent) ReapplyChildBackgrounds();
    Refresh();
    if (active && !_parent) {
        _xCursor = _savedCursorX;
        _yCursor = _savedCursorY;
        SetCursor(_savedCursor != 0);
        if (_cursor) {
            move(_yCursor, _xCursor);
            refresh();
        }
    }
    flushinp();
}

void Window::SetColors(int background, int foreground) {
    _background = background == -1 ? (_parent ? _parent->_background : _background) : background;
    _foreground = foreground == -1 ? (_parent ? _parent->_foreground : _foreground) : foreground;
    if (!_active) return;
    for (Window* child : _children) child->SetColors(background, foreground);
    ApplyBackground();
}

void Window::MoveCursor(int x, int y) {
    _xCursor = _x + x;
    _yCursor = _y + y;
    if (_win) wmove(_win, y, x);
    move(_yCursor, _xCursor);
}

void Window::SetCursor(bool visible) {
    _cursor = visible;
    curs_set(visible ? 1 : 0);
}

void Window::Touch() {
    if (_win) touchwin(_win);
}

int PaintBatch::_open = 0;

PaintBatch::PaintBatch() {
    ++_open;
}

PaintBatch::~PaintBatch() {
    if (--_open == 0) doupdate();
}

void Window::Refresh() {
    Touch();
    if (!_win) return;
    if (PaintBatch::Open())
        wnoutrefresh(_win);
    else
        wrefresh(_win);
}

void Window::Redraw() {
    if (_win) wredrawln(_win, 0, _height);
    for (Window* child : _children) child->Redraw();
}

void Window::Print(int x, int y, const std::string& text) {
    if (!_win || wmove(_win, y, x) == ERR) return;
    waddnstr(_win, text.c_str(), static_cast<int>(text.size()));
}

void Window::Erase() {
    if (_win) werase(_win);
}

}  // namespace Kovo
