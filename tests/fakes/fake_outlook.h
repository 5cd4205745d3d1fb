#pragma once

#include <windows.h>

#include <mapi_prop.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "com/dual.h"
#include "common/automation_object.h"
#include "outlook/events.h"

namespace beacon::test {

namespace events = standin::events;

/// An Outlook item and what the property reader finds in it, by the high half of the tag.
class FakeItem final : public standin::AutomationObject {
public:
    FakeItem(long itemClass, const std::wstring& entryId) : AutomationObject(L"item") {
        AddProperty(1, L"Class", [itemClass] { return com::FromLong(itemClass); });
        AddProperty(2, L"EntryID", [this, entryId] {
            if (entryIdFails) com::Raise(57);
            return com::FromText(entryId);
        });
    }

    /// Offers an event interface, and its subject as the default value.
    void Events(REFIID events = events::kItem10) {
        AddEvents(events, L"ItemEvents");
        AddProperty(DISPID_VALUE, L"Subject", [this] { return com::FromText(texts[0x0037]); });
    }

    std::map<long, std::wstring> texts;
    bool entryIdFails = false;
};

/// The property reader.
class FakeReader final : public com::Dual<IMAPIPropWrapper, 4> {
public:
    static inline bool refuses = false;  ///< to be uninitialised

    STDMETHODIMP GetStringProperty(VARIANT item, long tag, VARIANT* value) override {
        return com::Method([&] { *value = com::FromText(Text(item, tag)).Detach(); });
    }

    STDMETHODIMP Initialize() override { return S_OK; }

    STDMETHODIMP Uninitialize() override { return refuses ? E_FAIL : S_OK; }

    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long most, BSTR* value) override {
        return com::Method([&] { *value = com::NewBstr(Text(item, tag).substr(0, static_cast<size_t>(most))); });
    }

private:
    static std::wstring Text(const VARIANT& item, long tag) {
        const auto found = std::dynamic_pointer_cast<FakeItem>(standin::AutomationObject::From(item.pdispVal));
        return found == nullptr ? std::wstring() : found->texts[tag >> 16];
    }
};

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

}  // namespace beacon::test
