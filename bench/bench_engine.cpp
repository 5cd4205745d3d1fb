#include "bench_engine.h"

#include "com/error.h"
#include "com/text.h"

namespace beacon::bench {

/// The controller; its engine is the same object.
class BenchEngine::Published final : public standin::AutomationObject {
public:
    explicit Published(IDispatch* peer) : AutomationObject(L"controller") {
        AddMethod(1, L"GetMessageInterface", 2, 2,
                  [peer](const standin::CallArguments&) { return com::FromObject(peer); });
        AddMethod(2, L"GetEngineInterface", 2, 2,
                  [this](const standin::CallArguments&) { return com::FromObject(static_cast<IDispatch*>(this)); });
    }
};

BenchEngine::BenchEngine() : controller_(std::make_shared<Published>(peer.Get())) {
    com::Check(RegisterActiveObject(static_cast<IDispatch*>(controller_.get()), __uuidof(BeaconController),
                                    ACTIVEOBJECT_STRONG, &registration_));
}

HRESULT Peer::PutMessage(BSTR text, IMessageDispatch*, long, VARIANT*) {
    if (keeps) messages.push_back(com::ToText(text));
    return S_OK;
}

}  // namespace beacon::bench
