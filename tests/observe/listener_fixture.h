#pragma once

#include "common/connection_point.h"
#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"
#include "observe_fixture.h"

namespace beacon::test {

inline constexpr IID kExplorerEvents = {0x0006304F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kInspectorEvents = {0x0006307D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kInspectorEvents10 = {0x0006302A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kItemEvents = {0x0006303A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kItemEvents10 = {0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr DISPID kActivate = 0xF001;
inline constexpr DISPID kItemClose = 0xF004;
inline constexpr DISPID kDeactivate = 0xF006;
inline constexpr DISPID kSelectionChange = 0xF007;
inline constexpr DISPID kClose = 0xF008;
inline constexpr DISPID kBeforeDelete = 0xFA75;

/// An explorer or inspector of Outlook's: it shows items, and a real window has its caption.
class FakeWindow final : public standin::AutomationObject {
public:
    FakeWindow(const std::wstring& caption, std::vector<IID> events) : AutomationObject(caption), caption_(caption) {
        AddProperty(1, L"Caption", [this] { return Read(com::FromText(caption_)); });
        AddProperty(2, L"CurrentItem", [this] { return Read(standin::Give(items.empty() ? nullptr : items.front())); });
        AddProperty(3, L"EditorType", [this] { return Read(com::FromLong(editorType)); });
        AddProperty(4, L"Selection", [this] { return Read(standin::Give(std::make_shared<Selection>(*this))); });
        for (const IID& id : events) AddEvents(id, L"Events");
        handle_ = CreateWindowExW(0, WindowClass(), caption.c_str(), WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
    }

    ~FakeWindow() override { DestroyWindow(handle_); }

    long Handle() const { return HandleToLong(handle_); }

    bool IsMarked() const {
        return GetPropA(handle_, "PROP_OLK") == static_cast<IDispatch*>(const_cast<FakeWindow*>(this));
    }

    bool HasAnyMark() const { return GetPropA(handle_, "PROP_OLK") != nullptr; }

    std::vector<std::shared_ptr<FakeItem>> items;
    long editorType = 1;
    long selected = -1;  ///< what the selection says of its count; -1: as many as there are items
    bool fails = false;
    std::function<void()> once;  ///< inside the next property that is read

private:
    class Selection final : public AutomationObject {
    public:
        explicit Selection(FakeWindow& window) : AutomationObject(L"selection") {
            AddProperty(1, L"Count", [&window] {
                return com::FromLong(window.selected < 0 ? static_cast<long>(window.items.size()) : window.selected);
            });
            AddEither(2, L"Item", 1, 1, [&window](const standin::CallArguments& arguments) {
                return standin::Give(window.items.at(static_cast<size_t>(arguments.Long(0)) - 1));
            });
        }
    };

    static const wchar_t* WindowClass() {
        static const ATOM registered = [] {
            WNDCLASSW windowClass{};
            windowClass.lpfnWndProc = &DefWindowProcW;
            windowClass.hInstance = GetModuleHandleW(nullptr);
            windowClass.lpszClassName = L"rctrl_renwnd32";
            return RegisterClassW(&windowClass);
        }();
        return MAKEINTATOM(registered);
    }

    _variant_t Read(const _variant_t& value) {
        if (const auto action = std::exchange(once, nullptr)) action();
        if (fails) com::Raise(57);
        return value;
    }

    const std::wstring caption_;
    HWND handle_;
};

/// Listeners for fake windows, with fake forms and an engine in this process.
class ListenerTest : public ObserveTest {
protected:
    void SetUp() override {
        ObserveTest::SetUp();
        SetOfUser(L"DefaultAutoUpdate", L"True");
    }

    void TearDown() override {
        for (const auto& window : windows_) {
            EXPECT_EQ(window->OutsideReferences(), 0u) << com::ToAnsi(window->Description());
            EXPECT_EQ(window->Sinks(), 0u);
            EXPECT_FALSE(window->HasAnyMark());
        }
        for (const auto& form : services_.forms) EXPECT_TRUE(form->unloaded);
        windows_.clear();
        ObserveTest::TearDown();
    }

    FakeWindow& Window(const std::wstring& caption, std::vector<IID> events) {
        windows_.push_back(std::make_shared<FakeWindow>(caption, std::move(events)));
        return *windows_.back();
    }

    FakeWindow& Explorer() { return Window(L"Inbox", {kExplorerEvents}); }

    FakeWindow& Inspector(FakeItem& item) {
        FakeWindow& window = Window(L"A mail", {kInspectorEvents10});
        for (const auto& one : items_)
            if (one.get() == &item) window.items = {one};
        return window;
    }

    com::ComPtr<ExplorerListener> Follow(FakeWindow& explorer) {
        auto listener = com::MakeObject<ExplorerListener>(services_);
        listener->SetExplorer(com::Object(static_cast<IDispatch*>(&explorer)));
        return listener;
    }

    com::ComPtr<InspectorListener> FollowItem(FakeWindow& inspector) {
        auto listener = com::MakeObject<InspectorListener>(services_);
        listener->WatchInspector(com::Object(static_cast<IDispatch*>(&inspector)));
        return listener;
    }

    FakeForm& Form() { return *services_.forms.back(); }

    std::vector<std::shared_ptr<FakeWindow>> windows_;
};

}  // namespace beacon::test
