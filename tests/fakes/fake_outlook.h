#pragma once

#include <windows.h>

#include <mapi_prop.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "com/class_factory.h"
#include "com/dual.h"
#include "common/automation_object.h"
#include "outlook/object_model/events.h"
#include "support/registry.h"

namespace beacon::test {

namespace events = standin::events;

/// Outlook's numbers of item classes.
enum ItemClass : long { kAppointment = 26, kContact = 40, kMail = 43 };

/// An Outlook item. `texts` has what the property reader finds, by the high half of the property tag.
class FakeItem final : public standin::AutomationObject {
public:
    FakeItem(long itemClass, const std::wstring& entryId) : AutomationObject(L"item") {
        AddEvents(events::kItem10, L"ItemEvents");
        AddProperty(DISPID_VALUE, L"Subject", [this] { return com::FromText(texts[0x0037]); });
        AddProperty(1, L"Class", [itemClass] { return com::FromLong(itemClass); });
        AddProperty(2, L"EntryID", [this, entryId] {
            if (entryIdFails) com::Raise(57);
            return com::FromText(entryId);
        });
    }

    std::map<long, std::wstring> texts;
    bool entryIdFails = false;
};

class FakeReader final : public com::Dual<IMAPIPropWrapper, 3> {  // number in type_libraries.rc
public:
    static inline HRESULT ends = S_OK;                         ///< result of Uninitialize
    static inline HRESULT begins = S_OK;                       ///< result of Initialize
    static inline HRESULT reads = S_OK;                        ///< result of reading a property
    static inline std::vector<std::wstring>* calls = nullptr;  ///< receives the calls, unless null
    static inline std::function<void()> onInitialize;          ///< runs once inside the next Initialize
    static inline long alive = 0;

    FakeReader() { ++alive; }

    ~FakeReader() override { --alive; }

    STDMETHODIMP Initialize() override {
        if (calls != nullptr) calls->push_back(L"Initialize");
        if (const auto action = std::exchange(onInitialize, nullptr)) action();
        return begins;
    }

    STDMETHODIMP Uninitialize() override {
        if (calls != nullptr) calls->push_back(L"Uninitialize");
        return ends;
    }

    STDMETHODIMP GetStringProperty(VARIANT item, long tag, VARIANT* value) override {
        return com::Method([&] { *value = com::FromText(Text(item, tag, -1)).Detach(); });
    }

    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long most, BSTR* value) override {
        return com::Method([&] { *value = com::NewBstr(Text(item, tag, most)); });
    }

private:
    static std::wstring Text(const VARIANT& item, long tag, long most) {
        if (calls != nullptr) calls->push_back(std::to_wstring(tag) + L" up to " + std::to_wstring(most));
        com::Check(reads);
        const auto found = std::dynamic_pointer_cast<FakeItem>(standin::AutomationObject::From(item.pdispVal));
        return found == nullptr ? std::wstring() : found->texts[tag >> 16].substr(0, static_cast<size_t>(most));
    }
};

/// Lets the property reader be created by its name during its own lifetime, after which readers behave as usual again.
/// The thread needs an apartment.
class PublishedReader {
public:
    PublishedReader() {
        SetRegString(HKEY_LOCAL_MACHINE, kKey + std::wstring(L"\\CLSID"), L"",
                     L"{C3EEC785-E482-475A-BB9A-D368521FD50A}");
        const auto factory =
            com::MakeClassFactory([] { return com::ComPtr<IUnknown>(com::MakeObject<FakeReader>().Get()); });
        com::Check(CoRegisterClassObject(__uuidof(MAPIPropWrapper), factory.Get(), CLSCTX_INPROC_SERVER,
                                         REGCLS_MULTIPLEUSE, &registration_));
    }

    PublishedReader(const PublishedReader&) = delete;
    PublishedReader& operator=(const PublishedReader&) = delete;

    ~PublishedReader() {
        CoRevokeClassObject(registration_);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kKey);
        FakeReader::begins = FakeReader::reads = FakeReader::ends = S_OK;
    }

    static constexpr wchar_t kKey[] = L"SOFTWARE\\Classes\\Mapiprop.MAPIPropWrapper";

private:
    DWORD registration_ = 0;
};

inline std::shared_ptr<FakeItem> MakeMail(const std::wstring& body, const std::wstring& subject,
                                          const std::wstring& entryId) {
    const auto item = std::make_shared<FakeItem>(kMail, entryId);
    item->texts = {{0x0037, subject}, {0x1000, body}, {0x0C1A, L"Bo"}, {0x004E, L"Ann"}};
    return item;
}

/// An explorer or inspector that shows items. A real window of Outlook's class has its caption.
class FakeWindow final : public standin::AutomationObject {
public:
    FakeWindow(const std::wstring& caption, std::vector<IID> events) : AutomationObject(caption), caption_(caption) {
        AddProperty(1, L"Caption", [this] { return Read(com::FromText(caption_)); });
        AddProperty(2, L"CurrentItem",
                    [this] { return Read(standin::HandOut(items.empty() ? nullptr : items.front())); });
        AddProperty(3, L"EditorType", [this] { return Read(com::FromLong(1)); });
        AddProperty(4, L"Selection", [this] { return Read(standin::HandOut(std::make_shared<Selection>(*this))); });
        for (const IID& id : events) AddEvents(id, L"Events");
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &DefWindowProcW;
        windowClass.lpszClassName = L"rctrl_renwnd32";
        RegisterClassW(&windowClass);  // fails harmlessly for every window but the first
        handle_ = CreateWindowExW(0, windowClass.lpszClassName, caption.c_str(), WS_OVERLAPPED, 0, 0, 9, 9, nullptr,
                                  nullptr, nullptr, nullptr);
    }

    ~FakeWindow() override { DestroyWindow(handle_); }

    long Handle() const { return HandleToLong(handle_); }

    bool IsMarked() const {
        return GetPropA(handle_, "PROP_OLK") == static_cast<IDispatch*>(const_cast<FakeWindow*>(this));
    }

    bool HasAnyMark() const { return GetPropA(handle_, "PROP_OLK") != nullptr; }

    std::vector<std::shared_ptr<FakeItem>> items;
    long selected = -1;          ///< number of selected items; -1: all items
    bool fails = false;          ///< every property raises error 57
    std::function<void()> once;  ///< runs inside the next reading of a property
    std::function<void()> onRelease;

protected:
    void Unreferenced() override {
        if (onRelease) onRelease();
    }

private:
    class Selection final : public AutomationObject {
    public:
        explicit Selection(FakeWindow& window) : AutomationObject(L"selection") {
            AddProperty(1, L"Count", [&window] {
                return com::FromLong(window.selected < 0 ? static_cast<long>(window.items.size()) : window.selected);
            });
            AddEither(2, L"Item", 1, 1, [&window](const standin::CallArguments& arguments) {
                return standin::HandOut(window.items.at(static_cast<size_t>(arguments.Long(0)) - 1));
            });
        }
    };

    _variant_t Read(const _variant_t& value) {
        if (const auto action = std::exchange(once, nullptr)) action();
        if (fails) com::Raise(57);
        return value;
    }

    const std::wstring caption_;
    HWND handle_;
};

class FakeCollection final : public standin::AutomationObject {
public:
    FakeCollection(const wchar_t* kind, REFIID events) : AutomationObject(kind) { AddEvents(events, kind); }
};

class FakeApplication final : public standin::AutomationObject {
public:
    FakeApplication() : AutomationObject(L"Application") {
        AddProperty(1, L"Version", [this] {
            if (const auto action = std::exchange(once, nullptr)) action();
            return com::FromText(version);
        });
        AddProperty(2, L"Explorers", [this] { return standin::HandOut(explorers); });
        AddProperty(3, L"Inspectors", [this] {
            if (const auto action = std::exchange(once, nullptr)) action();
            return standin::HandOut(inspectors);
        });
        AddProperty(4, L"ActiveExplorer", [this] { return standin::HandOut(activeExplorer); });
        AddProperty(5, L"ActiveInspector", [this] { return standin::HandOut(activeInspector); });
        AddEvents(events::kApplication, L"ApplicationEvents");
    }

    std::wstring version = L"10.0.2627";
    std::function<void()> once;  ///< inside the next reading of the version or the inspectors
    std::shared_ptr<AutomationObject> explorers = std::make_shared<FakeCollection>(L"Explorers", events::kExplorers);
    std::shared_ptr<AutomationObject> inspectors = std::make_shared<FakeCollection>(L"Inspectors", events::kInspectors);
    std::shared_ptr<AutomationObject> activeExplorer;
    std::shared_ptr<AutomationObject> activeInspector;
};

}  // namespace beacon::test
