#include "com/served_class.h"

#include <mapi_prop.h>

#include "property_reader/property_reader.h"
#include "property_reader/registration.h"

const beacon::com::ServedClass beacon::com::kServedClass = {
    CLSID_MAPIPropWrapper,
    [] { return ComPtr<IUnknown>(MakeObject<PropertyReader>().Get()); },
    RegisterReader,
    UnregisterReader,
    true,
};
