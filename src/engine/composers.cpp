#include <utility>

#include "engine/encoders.h"
#include "engine/engine_link.h"
#include "engine/message_formats.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"

namespace beacon {
namespace {

/// The result of a delivery; empty when it fails, and the message is lost.
template <class Send>
_variant_t EmptyOnError(Send&& send) {
    _variant_t result;
    StopOnError([&] { result.Attach(send().GetVARIANT()); });
    return result;
}

}  // namespace

// The title arguments are unused: the title attribute always repeats the name.

_variant_t Application::SendPreamble(const std::wstring&, const std::wstring& szDocID, const std::wstring& szPath,
                                     const std::wstring& szName) {
    if (!MaySend()) return {};
    return EmptyOnError([&] { return Put(PreambleMessage(gAppHwnd, gButtonClicked, {szDocID, szPath, szName})); });
}

_variant_t Application::SendContactPreamble(const std::wstring&, const std::wstring& szDocID,
                                            const std::wstring& szPath, const std::wstring& szName) {
    if (!MaySend()) return {};
    return EmptyOnError([&] {
        return Put(ContactPreambleMessage(gAppHwnd, gButtonClicked, {szDocID, szPath, szName}));
    });
}

_variant_t Application::SendEmailPreamble(const std::wstring&, const std::wstring& szDocID, const std::wstring& szPath,
                                          const std::wstring& szName, const std::wstring& szSender,
                                          const std::wstring& szRecipient) {
    if (!MaySend()) return {};
    return EmptyOnError([&] {
        return Put(EmailPreambleMessage(gAppHwnd, gButtonClicked, {szDocID, szPath, szName}, szSender, szRecipient));
    });
}

_variant_t Application::SendEOD(const std::wstring& vstrDocId) {
    if (!MaySend()) return {};
    return EmptyOnError([&] {
        gButtonClicked = false;
        return Put(EodMessage(vstrDocId));
    });
}

_variant_t Application::SendEODUsupportedOutlookItem(const std::wstring& vstrDocId) {
    LogMsg2(L"SendEODUnsupportedOutlookItem called");
    if (!MaySend()) return {};
    return EmptyOnError([&] { return Put(UnsupportedEodMessage(vstrDocId)); });
}

_variant_t Application::SendPerson(const std::wstring& szFirstName, const std::wstring& szLastName,
                                   const std::wstring& szCompany, const std::wstring& szPosition,
                                   const std::wstring& szEmail, const std::wstring& vstrDocId,
                                   const std::wstring& vstrDocPath, const std::wstring& vstrDocName) {
    _variant_t result;
    const auto body = [&] {
        LogMsg(L"App SendPerson Begin");
        const std::wstring first = XML_Encode(szFirstName);
        const std::wstring last = XML_Encode(szLastName);
        const std::wstring company = XML_Encode(szCompany);
        const std::wstring position = XML_Encode(szPosition);
        const std::wstring email = XML_Encode(szEmail);
        const std::wstring message =
            PersonMessage({first, last, company, position, email}, {vstrDocId, vstrDocPath, vstrDocName});
        if (globals::gUserInterrupt) return;
        result = Put(message);
        LogMsg(L"App SendPerson End ", com::ToText(result));
    };
    ReportOnError(body, [](const com::Error& error) {
        LogMsg(L"App SendPerson error ", error.number, L" ", error.Source(), L" ", error.Description());
    });
    return result;
}

_variant_t Application::SendText(const std::wstring& vstrEmphasis, std::wstring& vstrText,
                                 const std::wstring& vstrDocId, const std::wstring& vstrDocPath,
                                 const std::wstring& vstrDocName) {
    if (!MaySend()) return {};
    return EmptyOnError([&]() -> _variant_t {
        LogMsg(L"App SendText begin ", vstrText, L" ", vstrDocId);
        vstrText = XML_Encode(std::move(vstrText));
        const std::wstring message = SendDocumentMessage(vstrEmphasis, vstrText, {vstrDocId, vstrDocPath, vstrDocName});
        LogMsg(L"appsendtext(1)");
        if (globals::gUserInterrupt) return {};
        LogMsg(L"appsendtext(2)");
        _variant_t result = Put(message);
        LogMsg(L"App SendText end");
        return result;
    });
}

std::wstring Application::XML_Encode(std::wstring text) {
    LogMsg(L"xml encode in ", text);
    std::wstring result = XmlEncode(std::move(text));
    LogMsg(L"xml encode out ", result);
    return result;
}

std::wstring Application::URL_Encode(const std::wstring& vstrIn) {
    LogMsg(L"URL encode in ", vstrIn);
    std::wstring result = UrlEncode(vstrIn);
    LogMsg(L"URL encode out ", result);
    return result;
}

std::wstring Application::URL_Decode(const std::wstring& vstrIn) {
    LogMsg(L"URL decode in ", vstrIn);
    std::wstring result = UrlDecode(vstrIn);
    LogMsg(L"URL decode out ", result);
    return result;
}

}  // namespace beacon
