#include "com/served_class.h"

#include "property_reader/property_reader.h"
#include "property_reader/registration.h"

const beacon::com::ServedClass beacon::com::kServedClass = {
    {0xC3EEC785, 0xE482, 0x475A, {0xBB, 0x9A, 0xD3, 0x68, 0x52, 0x1F, 0xD5, 0x0A}},
    [] { return ComPtr<IUnknown>(MakeObject<PropertyReader>().Get()); },
    RegisterReader,
    UnregisterReader,
    true,
};
