#pragma once

#include <string>
#include <string_view>

#include "com/error.h"
#include "support/log.h"

namespace beacon {

/// Error handling of the add-in's routines. No error reaches Outlook or the engine: each routine runs its body, or each
/// of its statements, by one of these helpers.

/// Runs one statement and ignores its failure, so that the routine continues with the next one.
template <class Statement>
void GoOnAfterError(Statement&& statement) noexcept {
    try {
        statement();
    } catch (...) {
    }
}

/// Logs a failure at level 2: prefix, description, " ", number. The prefix is usually "Exception in <routine>: ".
template <class Body>
void LogOnError(std::wstring_view prefix, Body&& body) noexcept {
    try {
        body();
    } catch (...) {
        const com::Error error = com::CurrentError();
        LogMsg2(prefix, error.Description(), L" ", error.number);
    }
}

/// Calls report(const com::Error&) after a failure, for routines that need more than the line of LogOnError. Exceptions
/// of the report are ignored.
template <class Body, class Report>
void ReportOnError(Body&& body, Report&& report) noexcept {
    try {
        body();
    } catch (...) {
        const com::Error error = com::CurrentError();
        GoOnAfterError([&] { report(error); });
    }
}

/// Runs a body that stops silently at its first failure.
template <class Body>
void StopOnError(Body&& body) noexcept {
    try {
        body();
    } catch (...) {
    }
}

}  // namespace beacon
