#pragma once

#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {

inline void Activate(FakeWindow& window) {
    window.Fire(events::kExplorer, events::kActivate);
    window.Fire(events::kInspector10, events::kActivate);
}

inline void CloseWindow(FakeWindow& window) {
    window.Fire(events::kExplorer, events::kWindowClose);
    window.Fire(events::kInspector10, events::kWindowClose);
}

/// Listeners for explorers and inspectors of the fake Outlook.
class ListenerTest : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        SetOfUser(L"DefaultAutoUpdate", L"True");
    }

    void TearDown() override {
        for (const auto& form : services_.forms) EXPECT_TRUE(form->unloaded);
        OutlookTest::TearDown();
    }

    com::ComPtr<ExplorerListener> Follow(FakeWindow& explorer) {
        auto listener = com::MakeObject<ExplorerListener>(services_);
        listener->Watch(static_cast<IDispatch*>(&explorer));
        return listener;
    }

    com::ComPtr<InspectorListener> FollowItem(FakeWindow& inspector) {
        auto listener = com::MakeObject<InspectorListener>(services_);
        listener->Watch(static_cast<IDispatch*>(&inspector));
        return listener;
    }

    FakeForm& Form() { return *services_.forms.back(); }
};

inline constexpr wchar_t kBodyText[] = L"A body that is long enough to be sent";

}  // namespace beacon::test
