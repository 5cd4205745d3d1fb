#include "tests/fakes/fake_engine.h"

#include "support/log.h"

namespace beacon::test {
class FakeEngine::Published final : public standin::AutomationObject {
public:
    Published(FakeEngine& owner, const std::wstring& name, IDispatch* dispatcher, std::shared_ptr<Published> engine)
        : AutomationObject(name) {
        AddMethod(1, L"GetMessageInterface", 2, 2, [&owner, name, dispatcher](const standin::CallArguments& arguments) {
            owner.Enter(name + L" GetMessageInterface", arguments.Text(0) + L" " + arguments.Text(1));
            return com::FromObject(dispatcher);
        });
        AddMethod(2, L"GetEngineInterface", 2, 2, [&owner, name, engine](const standin::CallArguments& arguments) {
            owner.Enter(name + L" GetEngineInterface", arguments.Text(0) + L" " + arguments.Text(1));
            return standin::HandOut(engine);
        });
    }
};

FakeEngine::FakeEngine()
    : controllerSide(MakeSide(L"controller")),
      engineSide(MakeSide(L"engine")),
      engine_(std::make_shared<Published>(*this, L"engine", engineSide.Get(), nullptr)) {
    controller_ = std::make_shared<Published>(*this, L"controller", controllerSide.Get(), engine_);
    com::Check(RegisterActiveObject(static_cast<IDispatch*>(controller_.get()), __uuidof(BeaconController),
                                    ACTIVEOBJECT_STRONG, &registration_));
    tables_ = controller_->OutsideReferences();
}

FakeEngine::~FakeEngine() {
    Hide();
    LetGo();
}

void FakeEngine::Hide() {
    if (registration_ == 0) return;
    RevokeActiveObject(std::exchange(registration_, 0), nullptr);
    tables_ = 0;
}

com::ComPtr<FakeDispatcher> FakeEngine::MakeSide(const std::wstring& name) {
    return com::MakeObject<FakeDispatcher>([=, this](std::wstring_view member, BSTR text, auto* sink, long id) {
        if (onMessage && member == L"PutMessage") return onMessage(text);
        if (onMessage && member == L"id") return;
        std::wstring arguments = member == L"id" ? L"" : std::to_wstring(id);
        if (text != nullptr) arguments = com::ToText(text) + L" " + NameOf(sink) + L" " + arguments;
        Enter(name + L" " + std::wstring(member), arguments);
    });
}

void FakeEngine::Enter(const std::wstring& call, const std::wstring& arguments) {
    LogMsg(L"* ", call, L" ", arguments);
    if (auto found = once.extract(call)) found.mapped()();
}

std::wstring FakeEngine::NameOf(IMessageDispatch* sink) const {
    if (sink == nullptr) return L"nothing";
    if (link == nullptr) return L"?";
    if (link->gControllerInterface != nullptr && sink == link->gControllerInterface->MDispatch()) return L"CI";
    return link->gEngineInterface != nullptr && sink == link->gEngineInterface->MDispatch() ? L"EI" : L"?";
}

void FakeEngine::LetGo() {
    const com::ComPtr<IMessageDispatch> first = std::move(controllerSide->peer);
    const com::ComPtr<IMessageDispatch> second = std::move(engineSide->peer);
}

ULONG FakeEngine::OutsideReferences() const {
    return controller_->OutsideReferences() - tables_ + engine_->OutsideReferences() + controllerSide->References() -
           1 + engineSide->References() - 1;
}

}  // namespace beacon::test
