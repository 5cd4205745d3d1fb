#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "observe/item_sender.h"
#include "observe/listener.h"
#include "observe/services.h"
#include "tests/fakes/pump.h"

namespace beacon::test {

class FakeListener final : public Listener {
public:
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    long GetHwnd() const override { return handle; }

    STDMETHODIMP SendLater() override { return Count(sendLaters); }

    STDMETHODIMP Send() override { return Count(sends, onSend); }

    STDMETHODIMP Close() override { return Count(closes, onClose); }

    void StopToolbarTimer() override {}

    bool IsInspector() const override { return false; }

    IDispatch* Dispatch() override { return nullptr; }

    ULONG references = 0;
    long handle = 0;
    int sendLaters = 0;
    int sends = 0;
    int closes = 0;
    std::function<void()> onSend;
    std::function<void()> onClose;

private:
    static HRESULT Count(int& calls, const std::function<void()>& action = {}) {
        ++calls;
        if (action) action();
        return S_OK;
    }
};

class FakeForm final : public HiddenForm {
public:
    void SetConnection(BeaconConnection* connection) override { connection_ = connection; }

    void Send() override { ++sends; }

    long StartAnalysisInterval() const override { return 2000; }

    void SetUpdateCountThreshold(long ticks) override { threshold = ticks; }

    void StartDisconnectTimer() override { ++retries; }

    void StartToolbarTimer() override { toolbarTimerRuns = true; }

    void StopToolbarTimer() override { toolbarTimerRuns = false; }

    void Unload() override {
        connection_.Reset();
        unloaded = true;
    }

    const com::ComPtr<BeaconConnection>& Connection() const { return connection_; }

    int sends = 0;
    int retries = 0;
    long threshold = -1;
    bool unloaded = false;
    bool toolbarTimerRuns = false;

private:
    com::ComPtr<BeaconConnection> connection_;
};

/// The services of the process, for listeners that are not in its registry.
class FakeServices final : public Services {
public:
    std::shared_ptr<HiddenForm> LoadForm(bool forInspector) override {
        if (failingForms-- > 0) com::Raise(7);
        formsOfInspectors += forInspector ? 1 : 0;
        return forms.emplace_back(std::make_shared<FakeForm>());
    }

    void SetUpWindowsHook() override { ++hooks; }

    void RemoveListener(const Listener&) override { ++removed; }

    com::ComPtr<BeaconConnection> FindConnectionForWindow(long) const override { return nullptr; }

    com::Object OutlookApplication() const override { return {}; }

    std::vector<std::shared_ptr<FakeForm>> forms;
    int formsOfInspectors = 0;
    int failingForms = 0;
    int hooks = 0;
    int removed = 0;
};

}  // namespace beacon::test
