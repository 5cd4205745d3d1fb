#pragma once

#include <windows.h>

#include <oleauto.h>

#include <exception>
#include <string>

namespace beacon::com {

/// A run-time error as the log lines speak of it: a number, where it came from, and a description. A failed call of a
/// COM object carries its HRESULT as the number (a signed value), unless the object itself reported a small number
/// through the control facility (0x800Annnn), which is then the number.
class Error : public std::exception {
public:
    Error(long number, std::wstring description, std::wstring source = L"BeaconOLKAdapter");

    const char* what() const noexcept override { return "beacon::com::Error"; }

    long number = 0;
    std::wstring source;
    std::wstring description;
};

/// Numbers of the errors that the add-in raises itself.
inline constexpr long kSubscriptOutOfRange = 9;
inline constexpr long kWrongDisconnectId = 12;
inline constexpr long kTypeMismatch = 13;
inline constexpr long kNoObject = 91;
inline constexpr long kObjectRequired = 424;
inline constexpr long kCannotCreateObject = 429;
inline constexpr long kNoSuchMember = 438;
inline constexpr long kInvalidPicture = 481;

/// An error of the add-in's own, with the usual description of its number.
[[noreturn]] void Raise(long number);

/// Throws what a failed HRESULT stands for, with the thread's error information when the callee left one; returns a
/// successful one unchanged.
HRESULT Check(HRESULT result);

/// Throws what a failed IDispatch::Invoke reported, and frees the record's strings.
[[noreturn]] void RaiseException(HRESULT result, EXCEPINFO& info);

/// The exception in flight as an Error. For use inside a catch block only.
Error CurrentError() noexcept;

/// The HRESULT that tells a COM caller of the exception in flight; leaves error information on the thread.
HRESULT CurrentResult() noexcept;

/// Runs the body of a COM method: its exceptions become the method's HRESULT.
template <class Body>
HRESULT Method(Body&& body) noexcept {
    try {
        body();
        return S_OK;
    } catch (...) {
        return CurrentResult();
    }
}

}  // namespace beacon::com
