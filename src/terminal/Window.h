#pragma once

#include <curses.h>

#include <string>
#include <vector>

namespace Kovo {

// While one is alive, windows that refresh only update curses' picture of the screen; the terminal gets
// the whole picture at once when the outermost batch ends. A screen built in one batch reaches the
// terminal as one frame: no half-drawn screen shows, and a slow line carries one burst, not one per area.
class PaintBatch {
  public:
    PaintBatch();
    ~PaintBatch();
    PaintBatch(const PaintBatch&) = delete;
    PaintBatch& operator=(const PaintBatch&) = delete;
    static bool Open() { return _open > 0; }

  private:
    static int _open;
};

// A rectangle of the curses screen. Top-level windows own a newwin; children are subwins of their
// parent, and a parent owns (and destroys) its children.
class Window {
  public:
    Window(int x, int y, int width, int height, int background, int foreground);
    Window(Window* parent, int dx, int dy, int width, int height, int background, int foreground);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window();

    virtual void SetActive(bool active);

    // Creates a child window of this one; the returned window is owned by this one.
    Window* AddChild(int dx, int dy, int width, int height, int background = -1, int foreground = -1);

    void SetColors(int background, int foreground);
    void MoveCursor(int x, int y);
    static void SetCursor(bool visible);
    void Touch();
    void Refresh();
    void Redraw();
    void Print(int x, int y, const std::string& text);
    void Erase();

    WINDOW* Handle() const { return _win; }
    Window* Parent() const { return _parent; }
    int X() const { return _x; }
    int Y() const { return _y; }
    int Width() const { return _width; }
    int Height() const { return _height; }
    int Background() const { return _background; }
    int Foreground() const { return _foreground; }
    bool IsActive() const { return _active; }
    const std::vector<Window*>& Children() const { return _children; }

    // The one text cursor of the screen: whoever shows it records it here.
    static bool _cursor;
    static int _xCursor;
    static int _yCursor;

  protected:
    void ApplyBackground();
    void ReapplyChildBackgrounds();

  private:
    int _savedCursor = 0;
    int _savedCursorX = 0;
    int _savedCursorY = 0;
    Window* _parent = nullptr;
    WINDOW* _win = nullptr;
    int _x, _y, _width, _height;
    int _background, _foreground;
    std::vector<Window*> _children;
    bool _active = true;
};

}  // namespace Kovo
