#pragma once

#include "observe/item_sender.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {

class Sender : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        listener_.handle = Handle();
        sender_ = com::MakeObject<BeaconConnection>(services_);
        sender_->SetListener(&listener_);
        Connect();
        ASSERT_TRUE(sender_->objApplication->gAppAdapterStarted);
    }

    void TearDown() override {
        if (sender_->objApplication != nullptr) EXPECT_TRUE(sender_->Disconnect());
        EXPECT_EQ(sender_->References(), 1u);
        sender_.Reset();
        EXPECT_EQ(listener_.references, 0u);
        OutlookTest::TearDown();
    }

    void Connect() {
        sender_->Connect(listener_.handle);
        sender_->objApplication->gAutoUpdate = true;
        log_.Clear();
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
