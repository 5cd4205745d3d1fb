#pragma once

#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {

inline constexpr wchar_t kBodyText[] = L"A body that is long enough to be sent";

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

    template <class Listener>
    com::ComPtr<Listener> Follow(FakeWindow& window) {
        auto listener = com::MakeObject<Listener>(services_);
        listener->Watch(static_cast<IDispatch*>(&window));
        return listener;
    }

    /// A listener that the first activation of its window has started.
    template <class Listener>
    com::ComPtr<Listener> Start(FakeWindow& window) {
        auto listener = Follow<Listener>(window);
        Activate(window);
        return listener;
    }

    FakeForm& Form() { return *services_.forms.back(); }
};

}  // namespace beacon::test
