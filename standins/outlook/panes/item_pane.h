#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace beacon::standin {

struct WindowChain;
class TextView;

/// The texts that a pane shows.
struct ItemText {
    std::wstring from, to, subject, body;
};

/// Outlook's EditorType. None: an item without a body window.
enum class Editor { None = 0, Plain = 1, Html = 2, Rich = 3, Word = 4 };

/// The child windows of a top-level window of Outlook, down to the control with the item's text: the reading pane of an
/// explorer, or header and body of an inspector. Versions are clamped to 9 to 12. The destructor destroys the windows;
/// the top-level window may be destroyed before.
///
/// Offsets count UTF-16 units of Body(), in which line breaks are CR LF. Failures of Windows throw com::Error.
class ItemPane {
public:
    /// Up to version 11 the reading pane shows a Word item as HTML. From version 12 on, Word shows everything.
    static std::unique_ptr<ItemPane> ForExplorer(HWND top, int outlookVersion, Editor editor);
    static std::unique_ptr<ItemPane> ForInspector(HWND top, int outlookVersion, Editor editor);
    ~ItemPane();
    ItemPane(const ItemPane&) = delete;
    ItemPane& operator=(const ItemPane&) = delete;

    /// Sets header and body; clears the selection.
    void Show(const ItemText& item);
    /// Selects the first occurrence. Throws std::invalid_argument if the body does not contain it.
    void SelectText(std::wstring_view text);
    /// Throws std::out_of_range if the range is not within the body.
    void SelectRange(size_t start, size_t length);
    /// The selected text with CR LF for line breaks; empty without a body window.
    std::wstring Selection() const;
    /// Throws std::logic_error without a body window, as do SelectText and SelectRange.
    void SetBody(std::wstring_view text);
    std::wstring Body() const;

    /// Whether the HTML viewer offers its document; default: true. Throws std::logic_error for other bodies.
    void OfferDocument(bool offered);

    /// The window with the body; null if there is none.
    HWND TextWindow() const;
    /// Sets the area in client coordinates of the top-level window.
    void Resize(const RECT& area);

private:
    enum class Place { Area, Whole, BelowHeader, Label, Field, Nowhere };

    struct Placed {
        HWND window;
        Place place;
        int row;
    };

    explicit ItemPane(HWND top);
    ItemPane(HWND top, const WindowChain& chain);

    HWND Add(HWND parent, const wchar_t* windowClass, Place place, const wchar_t* text = L"", DWORD style = 0,
             int row = 0);
    void AddDecoy(HWND parent, const wchar_t* windowClass, bool withDialog);
    void AddHeader(HWND dialog, const wchar_t* fieldClass);
    void AddBody(HWND dialog, const WindowChain& chain);
    TextView& View() const;

    const HWND top_;
    std::vector<Placed> windows_;
    std::vector<HWND> fields_;
    std::unique_ptr<TextView> view_;
};

}  // namespace beacon::standin
