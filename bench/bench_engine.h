#pragma once

#include <windows.h>

#include <beacon_util.h>

#include <memory>
#include <string>
#include <vector>

#include "com/dual.h"
#include "com/object.h"
#include "common/automation_object.h"

namespace beacon::bench {

/// One end of a channel; keeps the messages that it gets while `keeps` is set.
class Peer final : public com::Dual<IMessageDispatch, 2> {  // the library's number in type_libraries.rc
public:
    STDMETHODIMP Connect(BSTR, IMessageDispatch*, long id, VARIANT*) override {
        id_ = id;
        return S_OK;
    }

    STDMETHODIMP Disconnect(long, VARIANT*) override { return S_OK; }

    STDMETHODIMP get_id(long* value) override {
        *value = id_;
        return S_OK;
    }

    STDMETHODIMP PutControl(BSTR, IMessageDispatch*, long, VARIANT*) override { return S_OK; }

    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch*, long, VARIANT*) override;

    STDMETHODIMP Status(BSTR, IDispatch*, long, VARIANT*) override { return S_OK; }

    bool keeps = false;
    std::vector<std::wstring> messages;

private:
    long id_ = 0;
};

/// An engine and its controller that do nothing, in the running object table while this lives.
class BenchEngine {
public:
    BenchEngine();
    BenchEngine(const BenchEngine&) = delete;
    BenchEngine& operator=(const BenchEngine&) = delete;

    ~BenchEngine() { RevokeActiveObject(registration_, nullptr); }

    const com::ComPtr<Peer> peer = com::MakeObject<Peer>();

private:
    class Published;

    const std::shared_ptr<standin::AutomationObject> controller_;
    DWORD registration_ = 0;
};

}  // namespace beacon::bench
