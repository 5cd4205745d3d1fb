#include "com/class_factory.h"

#include <utility>

#include "com/counted.h"
#include "com/error.h"

namespace beacon::com {
namespace {

class ClassFactory final : public Counted<IClassFactory> {
public:
    explicit ClassFactory(ObjectMaker maker) : maker_(std::move(maker)) {}

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return Method([&] { return maker_()->QueryInterface(id, object); });
    }

    STDMETHODIMP LockServer(BOOL lock) override {
        LockModule(lock != FALSE);
        return S_OK;
    }

private:
    ObjectMaker maker_;
};

}  // namespace

ComPtr<IClassFactory> MakeClassFactory(ObjectMaker maker) { return MakeObject<ClassFactory>(std::move(maker)); }

}  // namespace beacon::com
