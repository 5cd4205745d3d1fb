#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace beacon::standin {

/// The list that drops down from a combo box: a popup window that never takes the activation or the focus.
class DropList {
public:
    /// Hears the chosen item; the list is closed by then.
    using Chosen = std::function<void(const std::wstring&)>;

    DropList() = default;
    DropList(const DropList&) = delete;
    DropList& operator=(const DropList&) = delete;

    ~DropList() { Close(); }

    /// `below` is the combo box's place on the screen; `selected` may be past the end.
    void Open(HWND owner, const RECT& below, std::vector<std::wstring> items, size_t selected, HFONT font,
              Chosen chosen);
    void Close();

    bool IsOpen() const { return window_ != nullptr; }

    HWND Window() const { return window_; }

    /// False when there is no such item.
    bool Select(const std::wstring& item);
    /// Up, down, home, end and return. Other keys do nothing.
    void Key(WPARAM key);

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void Paint(HDC dc) const;
    void Select(size_t place);
    void Choose();
    size_t PlaceAt(LPARAM point) const;

    HWND window_ = nullptr;
    std::vector<std::wstring> items_;
    size_t selected_ = 0;
    size_t first_ = 0;  // the topmost item that shows
    HFONT font_ = nullptr;
    Chosen chosen_;
};

}  // namespace beacon::standin
