#include "com/class_factory.h"

#include "com/error.h"
#include "com/module.h"

namespace beacon::com {
namespace {

class ClassFactory final : public IClassFactory {
public:
    explicit ClassFactory(ObjectMaker maker) : maker_(std::move(maker)) {}

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        if (id == IID_IUnknown || id == IID_IClassFactory) {
            *object = static_cast<IClassFactory*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&count_)); }

    STDMETHODIMP_(ULONG) Release() override {
        const LONG left = InterlockedDecrement(&count_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        HRESULT result = S_OK;
        const HRESULT made = Method([&] { result = maker_()->QueryInterface(id, object); });
        return FAILED(made) ? made : result;
    }

    STDMETHODIMP LockServer(BOOL lock) override {
        LockModule(lock != FALSE);
        return S_OK;
    }

private:
    ObjectMaker maker_;
    LONG count_ = 0;
    KeepsModule keeps_;
};

}  // namespace

ComPtr<IClassFactory> MakeClassFactory(ObjectMaker maker) {
    return ComPtr<IClassFactory>(new ClassFactory(std::move(maker)));
}

}  // namespace beacon::com
