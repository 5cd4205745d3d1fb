#pragma once

#include <windows.h>

#include <functional>

#include "observe/add_in.h"
#include "observe/item_sender.h"
#include "tests/fakes/pump.h"

namespace beacon::test {

/// What a form and a sender need of the listener that they serve.
class FakeListener final : public Listener {
public:
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    HRESULT STDMETHODCALLTYPE GetHwnd(long* result) override {
        *result = handle;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE SendLater() override {
        ++sendLaters;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Send() override {
        ++sends;
        if (onSend) onSend();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Close() override {
        ++closes;
        if (onClose) onClose();
        return S_OK;
    }

    IDispatch* Dispatch() override { return nullptr; }

    bool IsInspector() const override { return false; }

    void StopToolbarTimer() override {}

    ULONG references = 0;
    long handle = 0;
    int sendLaters = 0;
    int sends = 0;
    int closes = 0;
    std::function<void()> onSend;
    std::function<void()> onClose;
};

/// A form without timers.
class FakeForm final : public TimerForm {
public:
    void SetConnection(BeaconConnection* connection) override { connection_ = connection; }

    void Send() override {}

    long StartAnalysisInterval() const override { return 2000; }

    void SetUpdateCountThreshold(long) override {}

    void StartDisconnectTimer() override {}

    void StartToolbarTimer() override {}

    void StopToolbarTimer() override {}

    void Unload() override { connection_.Reset(); }

private:
    com::ComPtr<BeaconConnection> connection_;
};

/// The add-in around listeners that are registered by the test itself.
class FakeAddIn final : public AddIn {
public:
    std::shared_ptr<TimerForm> CreateForm(bool) override { return std::make_shared<FakeForm>(); }

    void SetUpWindowsHook() override { ++hooks; }

    bool RemoveInspectorListener(InspectorListener&) override { return true; }

    bool RemoveExplorerListener(ExplorerListener&) override { return true; }

    com::ComPtr<BeaconConnection> FindConnectionForWindow(long) override { return nullptr; }

    com::Object OutlookApplication() override { return {}; }

    int hooks = 0;
};

}  // namespace beacon::test
