#include "com/served_class.h"

#include <beacon_olk_adapter.h>

#include "addin/connect.h"
#include "addin/registration.h"

const beacon::com::ServedClass beacon::com::kServedClass = {
    CLSID_Connect,
    [] {
        ComPtr<IUnknown> connect;
        Check(MakeObject<beacon::Connect>().As(&connect));
        return connect;
    },
    RegisterAddIn,
    UnregisterAddIn,
    false,
};
