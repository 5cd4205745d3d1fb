#pragma once

#include <optional>

#include "extract/mapi_wrapper.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/fake_outlook.h"
#include "tests/fakes/fake_services.h"

namespace beacon::test {

/// Fake Outlook windows and items, their property reader, and an engine. TearDown checks that nothing of them is held
/// and that no window is marked.
class OutlookTest : public AdapterTest {
protected:
    static constexpr long kBody = 0x1000;

    void SetUp() override {
        AdapterTest::SetUp();
        reader_.emplace();
        engine_.emplace();
    }

    void TearDown() override {
        engine_.reset();
        AbandonMapiWrapper();
        reader_.reset();
        outlook_->activeExplorer.reset();
        for (const auto& window : windows_) EXPECT_FALSE(window->HasAnyMark());
        windows_.clear();
        items_.clear();
        AdapterTest::TearDown();
    }

    FakeItem& Mail(const std::wstring& body, const std::wstring& subject = L"Lunch on Friday",
                   const std::wstring& entryId = L"M1") {
        return *items_.emplace_back(MakeMail(body, subject, entryId));
    }

    FakeItem& Contact() {
        FakeItem& item = *items_.emplace_back(std::make_shared<FakeItem>(kContact, L"C1"));
        item.texts = {{0x3A06, L"Ann"}, {0x3A11, L"Lee"}, {0x3A16, L"Co"}, {0x3A17, L"CFO"}, {0x3003, L"ann.lee"}};
        return item;
    }

    /// The messages since the last call, as element name, emphasis and text ("send_document low Bo"). Clears the log.
    LogLines Received() {
        LogLines received;
        for (const std::wstring& message : NewMessages()) {
            std::wstring name = message.substr(1, message.find(L' ') - 1);
            for (const wchar_t* attribute : {L" emphasis=\"", L" doc=\""}) {
                const size_t at = message.find(attribute);
                if (at == std::wstring::npos) continue;
                const size_t from = at + wcslen(attribute);
                name += L" " + message.substr(from, message.find(L'"', from) - from);
            }
            received.push_back(name);
        }
        return received;
    }

    /// Runs the action inside the engine's call with the n-th message from now on.
    void AtMessage(int number, std::function<void()> action) {
        engine_->once[L"engine PutMessage"] = [=, this] { number == 1 ? action() : AtMessage(number - 1, action); };
    }

    FakeWindow& Window(const std::wstring& caption, std::vector<IID> events) {
        return *windows_.emplace_back(std::make_shared<FakeWindow>(caption, std::move(events)));
    }

    FakeWindow& Explorer() { return Window(L"Inbox", {events::kExplorer}); }

    FakeWindow& Inspector(FakeItem& item) {
        FakeWindow& window = Window(L"\u6CE8\u6587 \u0434\u043E - Message", {events::kInspector10});
        window.items = {std::static_pointer_cast<FakeItem>(item.shared_from_this())};
        return window;
    }

    const std::shared_ptr<FakeApplication> outlook_ = std::make_shared<FakeApplication>();
    FakeServices services_;
    std::optional<FakeEngine> engine_;
    std::vector<std::shared_ptr<FakeItem>> items_;
    std::vector<std::shared_ptr<FakeWindow>> windows_;

private:
    std::optional<PublishedReader> reader_;
};

}  // namespace beacon::test
