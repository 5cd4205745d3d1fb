#pragma once

#include "com/error.h"

namespace beacon::test {

/// What this use of something raises; a number of 0 when it raises nothing.
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
