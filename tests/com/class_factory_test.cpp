#include "com/class_factory.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "com/error.h"
#include "com/module.h"
#include "common/automation_object.h"

namespace beacon::com {
namespace {

TEST(ClassFactory, MakesObjectsAndSaysWhyNot) {
    const auto thing = std::make_shared<standin::AutomationObject>(L"Thing");
    IUnknown* const outer = static_cast<IDispatch*>(thing.get());
    const ObjectMaker make = [&] { return ComPtr<IUnknown>(outer); };

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
        {"fails", []() -> ComPtr<IUnknown> { throw Error(E_ACCESSDENIED, L"no"); }, nullptr, IID_IUnknown,
         E_ACCESSDENIED},
        {"no memory", []() -> ComPtr<IUnknown> { throw std::bad_alloc(); }, nullptr, IID_IUnknown, E_OUTOFMEMORY},
    };

    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        void* object = &object;
        EXPECT_EQ(test.answer, MakeClassFactory(test.maker)->CreateInstance(test.outer, test.asked, &object));
        EXPECT_EQ(test.answer == S_OK ? 1u : 0u, thing->OutsideReferences());
        EXPECT_EQ(test.answer == S_OK, object != nullptr);
        if (object != nullptr) static_cast<IUnknown*>(object)->Release();
    }
    EXPECT_EQ(E_POINTER, MakeClassFactory(make)->CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST(ClassFactory, AndItsLocksKeepTheModule) {
    const long before = LiveThings();
    const auto none = []() -> ComPtr<IUnknown> { Raise(kNoObject); };
    ComPtr<IClassFactory> factory = MakeClassFactory(none);
    EXPECT_EQ(before + 1, LiveThings());
    factory->LockServer(TRUE);
    factory.Reset();
    EXPECT_EQ(before + 1, LiveThings());
    MakeClassFactory(none)->LockServer(FALSE);
    EXPECT_EQ(before, LiveThings());
}

}  // namespace
}  // namespace beacon::com
