#include "com/class_factory.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>

#include "com/error.h"
#include "com/module.h"
#include "common/automation_object.h"

namespace beacon::com {
namespace {

TEST(ClassFactory, MakesObjectsAndSaysWhyNot) {
    const auto thing = std::make_shared<standin::AutomationObject>(L"Thing");
    const ObjectMaker make = [&] { return ComPtr<IUnknown>(static_cast<IDispatch*>(thing.get())); };
    IUnknown* const outer = static_cast<IDispatch*>(thing.get());

    const struct {
        const char* name;
        ObjectMaker maker;
        IUnknown* outer;
        IID asked;
        HRESULT answer;
    } cases[] = {
        {"made", make, nullptr, IID_IDispatch, S_OK},
        {"aggregation", make, outer, IID_IUnknown, CLASS_E_NOAGGREGATION},
        {"another interface", make, nullptr, IID_IMarshal, E_NOINTERFACE},
        {"raises", []() -> ComPtr<IUnknown> { Raise(kNoObject); }, nullptr, IID_IUnknown,
         static_cast<HRESULT>(0x800A005B)},
        {"fails", []() -> ComPtr<IUnknown> { throw Error(E_ACCESSDENIED, L"no"); }, nullptr, IID_IUnknown,
         E_ACCESSDENIED},
        {"no memory", []() -> ComPtr<IUnknown> { throw std::bad_alloc(); }, nullptr, IID_IUnknown, E_OUTOFMEMORY},
    };

    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const ComPtr<IClassFactory> factory = MakeClassFactory(test.maker);
        void* object = &object;
        EXPECT_EQ(test.answer, factory->CreateInstance(test.outer, test.asked, &object));
        EXPECT_EQ(test.answer == S_OK, object != nullptr);
        EXPECT_EQ(test.answer == S_OK ? 1u : 0u, thing->OutsideReferences());
        if (object != nullptr) static_cast<IUnknown*>(object)->Release();
    }
    EXPECT_EQ(E_POINTER, MakeClassFactory(make)->CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST(ClassFactory, AndItsLocksKeepTheModule) {
    const long before = LiveThings();
    ComPtr<IClassFactory> factory = MakeClassFactory([]() -> ComPtr<IUnknown> { Raise(kNoObject); });
    EXPECT_EQ(before + 1, LiveThings());
    factory->LockServer(TRUE);
    factory->LockServer(TRUE);
    factory->LockServer(FALSE);
    EXPECT_EQ(before + 2, LiveThings());
    ComPtr<IClassFactory> second = MakeClassFactory([]() -> ComPtr<IUnknown> { Raise(kNoObject); });
    factory.Reset();
    EXPECT_EQ(before + 2, LiveThings());
    second->LockServer(FALSE);
    second.Reset();
    EXPECT_EQ(before, LiveThings());
}

}  // namespace
}  // namespace beacon::com
