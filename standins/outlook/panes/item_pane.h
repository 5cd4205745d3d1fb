#pragma once

#include <windows.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace beacon::standin {

struct WindowChain;
class TextView;

/// What a pane shows of an item. `html` may be empty: the pane then makes its page from `body`.
struct ItemText {
    std::wstring from, to, subject, body, html;
};

/// The kinds of body, numbered as Outlook's EditorType is. None: an item without a body window.
enum class Editor { None = 0, Plain = 1, Html = 2, Rich = 3, Word = 4 };

struct PaneOptions {
    /// Class of the header's text fields; empty: the rich edit of the Outlook version.
    std::wstring fieldClass;
};

/// The child windows of one of Outlook's top-level windows, down to the control that holds the item's text: the reading
/// pane of an explorer, or the header and body of an inspector. Outlook versions below 9 are taken for 9, those above
/// 12 for 12. It belongs to the thread that made it and ends its windows with itself; the top-level window may go
/// first.
///
/// Offsets count UTF-16 characters of Body(), in which every line break is CR LF. Errors of Windows are thrown as
/// com::Error.
class ItemPane {
public:
    /// The reading pane renders a Word item as HTML up to version 11. From version 12 on, everything is shown by Word.
    static std::unique_ptr<ItemPane> ForExplorer(HWND top, int outlookVersion, Editor editor);
    static std::unique_ptr<ItemPane> ForInspector(HWND top, int outlookVersion, Editor editor,
                                                  const PaneOptions& options = {});
    ~ItemPane();
    ItemPane(const ItemPane&) = delete;
    ItemPane& operator=(const ItemPane&) = delete;

    /// Fills header and body; nothing is selected afterwards.
    void Show(const ItemText& item);
    /// Selects the first occurrence. Throws std::invalid_argument when the body does not hold it.
    void SelectText(std::wstring_view text);
    /// Throws std::out_of_range when the range is not within the body.
    void SelectRange(size_t start, size_t length);
    /// The selected text as the user sees it, with CR LF for line breaks; empty without a body window.
    std::wstring Selection() const;
    /// Throws std::logic_error without a body window, as the selecting functions do.
    void SetBody(std::wstring_view text);
    std::wstring Body() const;

    /// The HTML viewer does not answer messages for this time, which has begun when the function returns; a further
    /// call sets a new end. The first call moves the viewer to a thread of its own, since a window of the caller's
    /// thread is reached without a message queue and knows no time-out: TextWindow changes. Throws std::logic_error for
    /// other bodies.
    void Hang(std::chrono::milliseconds time);
    /// Whether the HTML viewer hands out its document when it is asked; it does unless told otherwise. Throws
    /// std::logic_error for other bodies.
    void OfferDocument(bool offered);

    /// The window that holds the body; null when there is none.
    HWND TextWindow() const;
    /// Where the pane lies, in client coordinates of the top-level window.
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
