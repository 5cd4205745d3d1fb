#include "com/class_factory.h"

#include <gtest/gtest.h>

#include <memory>

#include "com/error.h"
#include "com/module.h"
#include "common/automation_object.h"

namespace beacon::com {
namespace {

TEST(ClassFactory, MakesObjectsAndSaysWhyNot) {
    const auto thing = std::make_shared<standin::AutomationObject>(L"Thing");
    IUnknown* const unknown = static_cast<IDispatch*>(thing.get());
    const auto things = MakeClassFactory([&] { return ComPtr<IUnknown>(unknown); });
    const auto failing = MakeClassFactory([]() -> ComPtr<IUnknown> { throw Error(E_ACCESSDENIED, L"no"); });
    const auto answer = [](const ComPtr<IClassFactory>& factory, IUnknown* outer, REFIID asked) {
        void* object = &object;
        const HRESULT result = factory->CreateInstance(outer, asked, &object);
        EXPECT_EQ(result == S_OK, object != nullptr);
        if (object != nullptr) static_cast<IUnknown*>(object)->Release();
        return result;
    };
    EXPECT_EQ(S_OK, answer(things, nullptr, IID_IDispatch));
    EXPECT_EQ(CLASS_E_NOAGGREGATION, answer(things, unknown, IID_IUnknown));
    EXPECT_EQ(E_NOINTERFACE, answer(things, nullptr, IID_IMarshal));
    EXPECT_EQ(E_ACCESSDENIED, answer(failing, nullptr, IID_IUnknown));
    EXPECT_EQ(E_POINTER, things->CreateInstance(nullptr, IID_IUnknown, nullptr));
    EXPECT_EQ(0u, thing->OutsideReferences());
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
