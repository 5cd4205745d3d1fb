#pragma once

#include "com/error.h"

namespace beacon::test {

/// The error that `use` raises; number 0 if none.
template <class Use>
com::Error RaisedBy(Use&& use) {
    try {
        use();
    } catch (...) {
        return com::CurrentError();
    }
    return com::Error(0, L"nothing raised");
}

}  // namespace beacon::test
