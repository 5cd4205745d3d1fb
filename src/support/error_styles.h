#pragma once

#include <string>
#include <string_view>

#include "com/error.h"
#include "support/log.h"

namespace beacon {

/// How a routine of the add-in meets errors. No error ever reaches Outlook or the engine; each routine has one of these
/// styles, and names it by the helper that runs its body.

/// Runs one statement of a routine that goes on with the next one after a failure.
template <class Statement>
void GoOnAfterError(Statement&& statement) noexcept {
    try {
        statement();
    } catch (...) {
        // The statement is skipped; the routine's next one runs.
    }
}

/// Logs `prefix` + description + " " + number (level 2) and returns normally. The prefix is the routine's own, usually
/// "Exception in <routine>: ".
template <class Body>
void LogOnError(std::wstring_view prefix, Body&& body) noexcept {
    try {
        body();
    } catch (...) {
        const com::Error error = com::CurrentError();
        LogMsg2(prefix, error.Description(), L" ", error.number);
    }
}

/// Runs a body whose failure is reported in words of the routine's own, or has steps that follow it: calls
/// report(const com::Error&) then. What the report throws is swallowed. For everything with the usual line "prefix +
/// description + number", take LogOnError.
template <class Body, class Report>
void ReportOnError(Body&& body, Report&& report) noexcept {
    try {
        body();
    } catch (...) {
        const com::Error error = com::CurrentError();
        GoOnAfterError([&] { report(error); });
    }
}

/// Runs a body that stops quietly at its first failure; what it has set until then stands.
template <class Body>
void StopOnError(Body&& body) noexcept {
    try {
        body();
    } catch (...) {
        // Stopping is all that is asked for.
    }
}

}  // namespace beacon
