#pragma once

#include <memory>

#include "extract/class_paths.h"
#include "extract/window_search.h"
#include "outlook/panes/item_pane.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/pump.h"

namespace beacon::test {

using standin::Editor;
using standin::ItemPane;

/// A hidden, empty window of Outlook's class.
class Extract : public AdapterTest {
public:
    /// Ends with its parent. Registers the class if it does not exist.
    static HWND Make(HWND parent, const char* windowClass, const char* text = "") {
        WNDCLASSA description{};
        description.lpfnWndProc = DefWindowProcA;
        description.lpszClassName = windowClass;
        if (!GetClassInfoA(nullptr, windowClass, &description)) RegisterClassA(&description);
        return CreateWindowExA(0, windowClass, text, parent == nullptr ? WS_OVERLAPPEDWINDOW : WS_CHILD, 0, 0, 400, 300,
                               parent, nullptr, nullptr, nullptr);
    }

protected:
    void SetUp() override {
        AdapterTest::SetUp();
        top_ = Make(nullptr, kOutlookClass, "Inbox");
    }

    void TearDown() override {
        pane_.reset();
        DestroyWindow(top_);
        AdapterTest::TearDown();
    }

    /// Shows the item as this version of Outlook does, and makes it the running version.
    ItemPane& Show(long version, Editor editor) {
        globals::gOutlookVersion = version;
        pane_.reset();
        pane_ = ItemPane::ForInspector(top_, static_cast<int>(version), editor);
        pane_->Show({L"Ann Lee", L"Bob Kay", L"Quarter report", body_});
        return *pane_;
    }

    static void LimitDocuments(long units) { SetOfMachine(L"MaxDocUnits", std::to_wstring(units).c_str()); }

    static std::wstring Step(const wchar_t* walk, const wchar_t* windowClass, HWND found) {
        return walk + std::wstring(L" FindWindowEx(hWnd, 0, ") + windowClass + L", vbNullString) returned " +
               HandleText(found);
    }

    const std::wstring body_ = L"First line\r\nthe second line\r\nlast";
    HWND top_ = nullptr;
    std::unique_ptr<ItemPane> pane_;
};

}  // namespace beacon::test
