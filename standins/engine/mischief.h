#pragma once

namespace beacon::standin {

/// What the next incoming PutMessage meets, so that a client can be tried against an engine in trouble.
struct Mischief {
    unsigned hangMilliseconds = 0;  // 0: none
    bool dieInCall = false;
};

}  // namespace beacon::standin
