#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Cell.h"
#include "Key.h"

struct VTerm;
struct VTermScreen;
struct VTermState;

namespace KovoTerm {

// An in-memory terminal (libvterm) that a program's output is fed into and whose screen can be read
// back cell by cell. Key presses are encoded by the emulator itself and handed to `sink`, together with
// any answers the terminal gives to the program's queries.
class VirtualTerminal {
  public:
    using Sink = std::function<void(std::string_view)>;

    VirtualTerminal(int rows, int columns, Sink sink);
    ~VirtualTerminal();
    VirtualTerminal(const VirtualTerminal&) = delete;
    VirtualTerminal& operator=(const VirtualTerminal&) = delete;

    void Feed(std::string_view bytes);
    void Resize(int rows, int columns);

    void PressKey(Key key, bool shift = false, bool alt = false, bool ctrl = false);
    void TypeText(std::string_view utf8);

    int Rows() const { return _rows; }
    int Columns() const { return _columns; }

    // Row text with trailing blanks removed.
    std::string RowText(int row) const;
    std::vector<std::string> AllRows() const;
    // Every row, newline-separated, for failure messages.
    std::string ScreenText() const;
    bool Contains(std::string_view text) const;
    // Row and column of the first occurrence of `text` (columns counted in cells); false when absent.
    bool Find(std::string_view text, int& row, int& column) const;

    Cell CellAt(int row, int column) const;
    Color PaletteColor(int index) const;
    // How many palette changes (one per colour slot) the program has sent.
    int PaletteSets() const { return _paletteSets; }

  private:
    static int OnUnrecognisedOsc(const char* command, std::size_t length, void* self);
    static void OnOutput(const char* bytes, std::size_t length, void* self);
    void ApplyOsc(std::string_view command);
    Color ToColor(const void* vtermColor) const;

    VTerm* _vt = nullptr;
    VTermScreen* _screen = nullptr;
    VTermState* _state = nullptr;
    int _rows;
    int _columns;
    Sink _sink;
    int _paletteSets = 0;
};

}  // namespace KovoTerm
