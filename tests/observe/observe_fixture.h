#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mapi_prop.h>

#include <map>
#include <optional>

#include "com/class_factory.h"
#include "extract/mapi_wrapper.h"
#include "support/registry.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/fake_services.h"

namespace beacon::test {

using Lines = LogLines;

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
    void Events(REFIID events = {0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}) {
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

/// Fake items, the property reader that reads them, and an engine in this process.
class ObserveTest : public AdapterTest {
protected:
    static constexpr long kSubject = 0x0037;
    static constexpr long kBody = 0x1000;
    static constexpr wchar_t kReaderKey[] = L"SOFTWARE\\Classes\\Mapiprop.MAPIPropWrapper";

    void SetUp() override {
        AdapterTest::SetUp();
        RegisterReader();
        engine_.emplace();
    }

    void TearDown() override {
        FakeReader::refuses = false;
        engine_->LetGo();
        EXPECT_EQ(engine_->OutsideReferences(), 0u);
        engine_.reset();
        AbandonMapiWrapper();
        CoRevokeClassObject(registration_);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kReaderKey);
        for (const auto& item : items_) EXPECT_EQ(item->OutsideReferences(), 0u);
        items_.clear();
        AdapterTest::TearDown();
    }

    FakeItem& Item(long itemClass, const std::wstring& entryId) {
        items_.push_back(std::make_shared<FakeItem>(itemClass, entryId));
        return *items_.back();
    }

    FakeItem& Mail(const std::wstring& body, const std::wstring& subject = L"Lunch on Friday",
                   const std::wstring& entryId = L"M1") {
        FakeItem& item = Item(43, entryId);
        item.texts = {{kSubject, subject}, {kBody, body}, {0x0C1A, L"Bo"}, {0x004E, L"Ann"}};
        return item;
    }

    FakeItem& Contact(const std::wstring& entryId = L"C1") {
        FakeItem& item = Item(40, entryId);
        item.texts = {{0x3A06, L"Ann"}, {0x3A11, L"Lee"}, {0x3A16, L"Co"}, {0x3A17, L"CFO"}, {0x3003, L"ann.lee"}};
        return item;
    }

    /// The messages that have reached the engine since the last call: the element's name and a short form of the rest.
    Lines Received() {
        Lines received;
        for (const std::wstring& line : log_.Lines(1)) {
            const std::wstring prefix = L"* engine PutMessage <";
            if (!line.starts_with(prefix)) continue;
            const std::wstring message = line.substr(prefix.size());
            std::wstring name = message.substr(0, message.find(L' '));
            for (const wchar_t* attribute : {L" emphasis=\"", L" doc=\""}) {
                const size_t at = message.find(attribute);
                if (at == std::wstring::npos) continue;
                const size_t from = at + wcslen(attribute);
                name += L" " + message.substr(from, message.find(L'"', from) - from);
            }
            received.push_back(name);
        }
        log_.Clear();
        return received;
    }

    /// The preambles that have reached the engine since the log was emptied.
    Lines Preambles() {
        Lines preambles;
        for (const std::wstring& line : log_.Lines(1))
            if (line.starts_with(L"* engine PutMessage <pre_send_document")) preambles.push_back(line);
        return preambles;
    }

    /// Runs the action inside the engine's call with the n-th message.
    void AtMessage(int number, std::function<void()> action) {
        engine_->once[L"engine PutMessage"] = [this, number, action] {
            if (number == 1)
                action();
            else
                AtMessage(number - 1, action);
        };
    }

    FakeServices services_;
    std::optional<FakeEngine> engine_;
    std::vector<std::shared_ptr<FakeItem>> items_;

private:
    void RegisterReader() {
        const CLSID id = {0xC3EEC785, 0xE482, 0x475A, {0xBB, 0x9A, 0xD3, 0x68, 0x52, 0x1F, 0xD5, 0x0A}};
        SetRegString(HKEY_LOCAL_MACHINE, kReaderKey + std::wstring(L"\\CLSID"), L"",
                     L"{C3EEC785-E482-475A-BB9A-D368521FD50A}");
        const auto factory = com::MakeClassFactory([] {
            com::ComPtr<IUnknown> reader = com::MakeObject<FakeReader>();
            return reader;
        });
        com::Check(CoRegisterClassObject(id, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_));
    }

    DWORD registration_ = 0;
};

/// A connected sender that serves a fake listener.
class Sender : public ObserveTest {
protected:
    void SetUp() override {
        ObserveTest::SetUp();
        listener_.handle = Handle();
        sender_ = com::MakeObject<BeaconConnection>(services_);
        sender_->SetListener(&listener_);
        sender_->Connect(listener_.handle);
        ASSERT_TRUE(sender_->objApplication->gAppAdapterStarted);
        sender_->objApplication->gAutoUpdate = true;
        log_.Clear();
    }

    void TearDown() override {
        FakeReader::refuses = false;
        if (sender_->objApplication != nullptr) EXPECT_TRUE(sender_->Disconnect());
        EXPECT_EQ(sender_->References(), 1u);
        sender_.Reset();
        EXPECT_EQ(listener_.references, 0u);
        ObserveTest::TearDown();
    }

    bool Send(FakeItem& item, const std::wstring& selected = {}) {
        std::wstring selection = selected;
        bool bail = false;
        sender_->SendOutlookItem(com::Object(static_cast<IDispatch*>(&item)), selection, bail, 0);
        return bail;
    }

    FakeListener listener_;
    com::ComPtr<BeaconConnection> sender_;
};

}  // namespace beacon::test
