#pragma once

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include <functional>

namespace beacon::com {

using Microsoft::WRL::ComPtr;

/// Makes one new object; throws on failure.
using ObjectMaker = std::function<ComPtr<IUnknown>()>;

/// A class factory for one class. It does not support aggregation.
ComPtr<IClassFactory> MakeClassFactory(ObjectMaker maker);

}  // namespace beacon::com
