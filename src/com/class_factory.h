#pragma once

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include <functional>

namespace beacon::com {

using Microsoft::WRL::ComPtr;

/// Creates one object. Throws on failure.
using ObjectMaker = std::function<ComPtr<IUnknown>()>;

/// A class factory without support for aggregation.
ComPtr<IClassFactory> MakeClassFactory(ObjectMaker maker);

}  // namespace beacon::com
