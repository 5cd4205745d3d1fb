#include "com/served_class.h"

#include "addin/connect.h"
#include "addin/registration.h"

const beacon::com::ServedClass beacon::com::kServedClass = {
    {0x6E547C94, 0x44EC, 0x474B, {0xAC, 0x54, 0x1B, 0x05, 0xA2, 0xE3, 0x39, 0xB9}},
    [] {
        ComPtr<IUnknown> connect;
        Check(MakeObject<beacon::Connect>().As(&connect));
        return connect;
    },
    RegisterAddIn,
    UnregisterAddIn,
    false,
};
