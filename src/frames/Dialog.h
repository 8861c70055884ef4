#pragma once

#include <memory>
#include <string>
#include <vector>

#include "frames/Frame.h"

namespace Kovo {

class CheckItem;
class InputItem;
class Item;
class ItemList;
class LabelItem;
class RadioItem;
class TextArea;

// In place of a string id: no text, the dialog leaves it empty or sets it itself. (Id 0 names the welcome
// screen's key hint, which is never a dialog's title or body.)
inline constexpr unsigned kNoTextId = 0;

// What a dialog looks like before it does anything: its size, the height of its header, its title and
// body texts (string ids, or kNoTextId) and its key line.
struct DialogLayout {
    int width;
    int height;
    int headerHeight;
    unsigned titleId = kNoTextId;
    unsigned bodyId = kNoTextId;
    const char* footer = "";
};

// The characters an input field accepts besides the editing keys. Letters and digits are ASCII only.
enum class FieldKeys {
    Digits,      // 0-9
    Ipv4,        // digits and '.': a dotted-quad address or netmask
    DnsAddress,  // hexadecimal digits, '.' and ':': a name server, IPv4 or IPv6
    Ipv6,        // letters, digits, ':', '/' and '%': an IPv6 address or network, with a zone's name
    HostName,    // letters, digits, '-' and '.'
    Suffixes,    // letters, digits, blank, ',', '-' and '.': domain names apart by blanks or commas
    Printable,   // any printable character
};
// True when `key` is a character a field of the class takes.
bool AcceptsKey(FieldKeys keys, int key);

// A centred pop-up: a dark-grey header with title and message, an amber body with an optional content
// window for items, and a footer line of key hints.
//
// A dialog describes itself with a DialogLayout, adds its items through the helpers below (the dialog
// owns them, the list only shows them), and handles only its own keys in OnKey; the common keys are
// handled here: Enter applies and closes with 1 unless the dialog says otherwise, Esc closes with 0, Up/Down
// move between items, Space toggles the focused check box or chooses the focused radio item, and editing keys
// go to the focused field if its class takes them.
class Dialog : public Frame {
  public:
    // The header grows (and the dialog with it, as far as the screen allows) when the body text, the
    // layout's or `body`, needs more rows than the layout gives it: a text cut short can mislead, and
    // advice often comes last.
    Dialog(Frame* parent, const DialogLayout& layout);
    Dialog(Frame* parent, const DialogLayout& layout, const std::string& body);
    ~Dialog() override;

    // `layout` with the header tall enough for `body`.
    static DialogLayout FitToBody(DialogLayout layout, const std::string& body);

    void SetActive(bool active) override;
    // Draws the items and runs the key loop until the dialog closes; returns its result.
    int HandleKey() override;

    void SetTitle(const std::string& text);
    void SetText(const std::string& text);
    void SetFooter(const std::string& text);

    Window* Header() const { return _header; }
    Window* Body() const { return _body; }
    // Null when the body is four rows or less.
    Window* Content() const { return _content; }
    TextArea* Title() const { return _title; }
    TextArea* Footer() const { return _footer; }
    // The dialog's item list, made on first use over the whole content window unless placed before.
    ItemList& Items();

  protected:
    // The dialog's own keys; true when the key was handled (the common keys then leave it alone). By
    // default Enter applies the dialog and closes it with 1.
    virtual bool OnKey(int key);
    // What Enter does before the dialog closes with 1.
    virtual void Apply() {}
    // Ends the key loop with `result`.
    void Close(int result);
    // One key loop until Close(); returns the result given to it.
    int RunKeys();
    // The key loop of a dialog of text fields: shows the text cursor on the item at `ordinal` while it
    // runs and hides it again however the loop closes.
    int RunWithCursor(int ordinal);
    // The same for a dialog of fields among other items: the text cursor shows only while a field has
    // the focus (ShowCursorOnField after each move), and is hidden however the loop ends, a failure
    // passing through included.
    int RunWithCursorOnFields(int ordinal);
    void ShowCursorOnField();
    // Moves the focus to the selectable item at `ordinal` (in the order shown).
    void Focus(int ordinal);
    // The common keys; false for a key none of them is.
    bool HandleCommonKey(int key);

    // Makes the item list at a place of the content window of its own.
    void PlaceItems(int x, int y, int width, int height);
    LabelItem& AddLabel(const std::string& text, bool selectable);
    CheckItem& AddCheck(const std::string& caption, bool checked);
    // Radio items of one dialog form one group: choosing one clears the others.
    RadioItem& AddRadio(const std::string& caption, bool checked);
    InputItem& AddField(const std::string& label, const std::string& value, int width, FieldKeys keys,
                        int maxLength = 0);
    // A text area in the content window, owned by the window tree.
    TextArea& AddTextArea(int x, int y, int width, int height, int foreground);
    // Forgets every item added so far; ShowItems must follow before the next key.
    void ClearItems();
    // Puts the added items into the list, in the order they were added.
    void ShowItems();
    // The focused item as a field, or null.
    InputItem* FocusedField() const;
    // Selects the radio item at `index` (in the order added) and clears the others.
    void Choose(std::size_t index);
    const std::vector<RadioItem*>& Radios() const { return _radios; }

  private:
    // The dialog made to a layout already fitted to its body.
    Dialog(Frame* parent, const DialogLayout& layout, const std::string& body, int fitted);
    struct Field;
    bool Edit(int key);

    // The window tree owns these; they are destroyed with the dialog.
    Window* _header;
    Window* _body;
    Window* _content = nullptr;
    TextArea* _title;
    TextArea* _message;
    TextArea* _footer;
    ItemList* _list = nullptr;
    // The items the list shows, owned here.
    std::vector<std::unique_ptr<Item>> _items;
    std::vector<RadioItem*> _radios;
    std::vector<Field> _fields;
    bool _closed = false;
    int _result = 0;
};

}  // namespace Kovo
