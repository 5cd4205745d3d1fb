#include "observe/item_sender.h"

#include "extract/item_readers.h"
#include "extract/mapi_wrapper.h"
#include "extract/window_search.h"
#include "observe/body_text.h"
#include "observe/item_classes.h"
#include "observe/item_text.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Need;
using com::Object;

constexpr short kContactEditor = 2;  // contacts are skipped and sent as if shown in the HTML editor
constexpr wchar_t kPath[] = L"/";

}  // namespace

BeaconConnection::BeaconConnection(Services& services) : mServices_(services) {}

void BeaconConnection::Final() noexcept {
    DropLink();
    DropToolbar();
}

void BeaconConnection::DropToolbar() noexcept {
    const ComPtr<CToolbar> toolbar = gToolbar;
    if (toolbar == nullptr) return;
    toolbar->SetConnect(nullptr);  // it may live on
    gToolbar.Reset();
}

void BeaconConnection::ReleaseOutlook() noexcept {
    mbOutlookGone_ = true;
    objLastItem_.Reset();
    DropToolbar();
}

void BeaconConnection::RememberLastItem(const Object& item) {
    if (objApplication != nullptr && !mbOutlookGone_) objLastItem_ = item;
}

void BeaconConnection::DropLink() noexcept {
    const ComPtr<Application> link = objApplication;
    if (link == nullptr) return;
    objApplication.Reset();
    link->OwnerHasEnded();  // it may live on
}

ComPtr<Listener> BeaconConnection::NeedListener() const {
    const ComPtr<Listener> listener(objListener_);
    if (listener == nullptr) com::Raise(com::kNoObject);
    return listener;
}

ComPtr<Application> BeaconConnection::NeedLink() const {
    ComPtr<Application> link = objApplication;
    Need(link);
    return link;
}

std::wstring BeaconConnection::ContextText() const { return com::ToText(gContextString); }

void BeaconConnection::SendOutlookItem(const Object& objItem, std::wstring& szSelected, bool& bBailEarly,
                                       short editorType) {
    const ComPtr<BeaconConnection> alive(this);
    long itemClass = 0;
    GoOnAfterError([&] { itemClass = objItem.GetLong(L"Class"); });
    LogMsg2(L"SendOutlookItem called: ItemClass=", itemClass, L" Selected=[", szSelected, L"]");
    GoOnAfterError([&] {
        if (itemClass == kContactClass) SendContact(objItem, szSelected, bBailEarly);
        if (itemClass == kMailClass) SendMail(objItem, szSelected, bBailEarly, editorType);
    });
}

// Not cached: it is read up to three times for one mail, since it may change during the calls to the engine.
std::wstring BeaconConnection::BodyOf(const Object& item, short editorType) const {
    return GetMailItemBody(item, NeedListener()->GetHwnd(), editorType);
}

bool BeaconConnection::SkipItem(const Object& item, bool& bBailEarly, short editorType) {
    bool skip = false;
    bBailEarly = false;
    StopOnError([&] {
        LogMsg2(L"SkipItem Called");
        if (globals::gUserInterrupt) {
            LogMsg2(L"SkipItem is True(0)");
            skip = bBailEarly = true;
            return;
        }
        LogMsg2(L"SkipItem Checking for DialogChild");
        if (IsDialogChild(static_cast<HWND>(LongToHandle(NeedListener()->GetHwnd())))) {
            LogMsg2(L"SkipItem is True(1)");
            skip = bBailEarly = true;
            return;
        }
        LogMsg2(L"SkipItem Checking for MailItem");
        if (item && item.GetLong(L"Class") == kMailClass) {
            const std::wstring body = BodyOf(item, editorType);
            if (IsBodyTooShort(body)) {
                LogMsg2(L"SkipItem is True(2): GetMailItemBoby=[", body, L"]");
                skip = bBailEarly = true;
                return;
            }
        }
        if (bForceNext_) {
            bForceNext_ = false;
            return;
        }
        skip = IsUnchanged(item, editorType);
    });
    return skip;
}

bool BeaconConnection::IsUnchanged(const Object& item, short editorType) {
    if (!objLastItem_ || !item) return !objLastItem_ && !item;
    if (objLastItem_.GetText(L"EntryID") != item.GetText(L"EntryID")) return false;
    if (item.GetLong(L"Class") != kMailClass) {
        LogMsg2(L"SkipItem is True(4)");
        return true;
    }
    if (BodySignature(BodyOf(item, editorType)) != strLastBodySignature) return false;
    LogMsg2(L"SkipItem is True(3)");
    return true;
}

std::wstring BeaconConnection::GenDocID(const std::wstring& strName) const {
    return DocumentId(hWnd_, strName, static_cast<std::int32_t>(GetTickCount()));
}

void BeaconConnection::SendPiece(const std::wstring& emphasis, std::wstring text, const Document& document) {
    NeedLink()->SendText(emphasis, text, document.id, kPath, document.title);
}

void BeaconConnection::SendMail(const Object& objItem, std::wstring& szSelected, bool& bBailEarly, short editorType) {
    const ComPtr<BeaconConnection> alive(this);
    StopOnError([&] {
        LogMsg2(L"SendMail(1)");
        if (SkipItem(objItem, bBailEarly, editorType)) return;
        const long window = NeedListener()->GetHwnd();
        const std::wstring sender = GetMailItemSenderName(objItem, window);
        const std::wstring recipient = GetMailItemReceivedByName(objItem, window);
        const std::wstring subject = GetMailItemSubject(objItem, window);
        LogMsg2(L"SendMail(2)");
        const std::wstring title = MailTitle(subject);
        const Document document{GenDocID(sender + title), title};
        LogMsg2(L"SendMail(3)");
        NeedLink()->SendEmailPreamble(title, document.id, kPath, title, sender, recipient);
        if (IsWorthSending(subject)) SendPiece(L"high", std::wstring(StripReplyPrefixes(subject)), document);
        if (IsWorthSending(szSelected))
            NeedLink()->SendText(L"selected", szSelected, document.id, kPath, document.title);
        LogMsg2(L"SendMail(4)");
        SendBodyText(objItem, editorType, document);
        NeedLink()->SendEOD(document.id);
        RememberLastItem(objItem);
    });
}

void BeaconConnection::SendBodyText(const Object& item, short editorType, const Document& document) {
    LogMsg2(L"SendBodyText(1)");
    std::wstring body;
    GoOnAfterError([&] { body = BodyOf(item, editorType); });
    strLastBodySignature = BodySignature(body);
    GoOnAfterError([&] { body = CleanBodyText(body, globals::gUserInterrupt); });
    BodySplitter pieces(body);
    for (auto next = pieces.Next(); next; next = pieces.Next()) {
        LogMsg2(L"SendBodyText(2)");
        // After user input no more text is sent, only the end of the document.
        if (globals::gUserInterrupt) return;
        std::wstring piece = RemoveBreakChars(*next, globals::gUserInterrupt);
        if (piece.size() > 1) {
            const auto emphasis = PieceEmphasis(piece, globals::gUserInterrupt);
            if (!emphasis) return;
            LogMsg2(L"SendBodyText(3)");
            GoOnAfterError([&] { SendPiece(std::wstring(*emphasis), std::move(piece), document); });
            LogMsg2(L"SendBodyText(4)");
        }
    }
}

void BeaconConnection::SendContact(const Object& objItem, std::wstring& szSelected, bool& bBailEarly) {
    const ComPtr<BeaconConnection> alive(this);
    const std::wstring first = GetContactItemFirstName(objItem);
    const std::wstring last = GetContactItemLastName(objItem);
    const std::wstring fullName = ContactFullName(first, last);
    const std::wstring company = GetContactItemCompanyName(objItem);
    const std::wstring jobTitle = GetContactItemJobTitle(objItem);
    if (SkipItem(objItem, bBailEarly, kContactEditor)) return;

    const std::wstring title = ContactTitle(fullName);
    const Document document{GenDocID(fullName + company + jobTitle), title};
    NeedLink()->SendContactPreamble(title, document.id, kPath, title);
    // Read again, in this order; the arguments of a call have no order.
    const std::wstring personFirst = GetContactItemFirstName(objItem);
    const std::wstring personLast = GetContactItemLastName(objItem);
    const std::wstring email = GetContactItemEmail(objItem);
    NeedLink()->SendPerson(personFirst, personLast, company, jobTitle, email, document.id, kPath, title);
    NeedLink()->SendText(L"selected", szSelected, document.id, kPath, title);
    // The repetitions weight the contact's name, company and title in the engine's analysis.
    ContactTexts texts = RepeatedContactTexts(fullName, company, jobTitle);
    SendPiece(L"high", std::move(texts.names), document);
    SendPiece(L"high", std::move(texts.companies), document);
    SendPiece(L"high", std::move(texts.pairs), document);
    SendPiece(L"high", texts.weighted, document);
    SendPiece(L"high", std::move(texts.weighted), document);
    NeedLink()->SendEOD(document.id);
    LogMsg2(L"SendContact: Resetting gButtonClicked");  // in SendEOD: a click during that call stays
    RememberLastItem(objItem);
}

bool BeaconConnection::Connect(long hWnd) {
    const ComPtr<BeaconConnection> alive(this);
    bool complete = false;
    StopOnError([&] {
        hWnd_ = hWnd;
        LogMsg2(L"BeaconConnection.Connect");
        DropLink();
        const auto link = com::MakeObject<Application>();
        objApplication = link;
        link->Init(hWnd, this);
        link->StartUp();
        if (objApplication.Get() != link.Get()) return;  // the window ended inside one of the engine's calls
        const std::wstring enabled = GetEnableToolbar();
        if (enabled == L"0") LogMsg2(L"*** BeaconConnection: Connect: Toolbar not enabled, not showing it");
        if (gToolbar == nullptr && enabled == L"1" && !mbOutlookGone_) {
            LogMsg2(L"WC.Connect: Creating gToolbar");
            gToolbar = com::MakeObject<CToolbar>();
            LogMsg2(L"WC.Connect:  Setting gToolbar.gConnect = Me");
            gToolbar->SetConnect(this);
        }
        bForceNext_ = complete = true;
    });
    return complete;
}

bool BeaconConnection::Disconnect() {
    const ComPtr<BeaconConnection> alive(this);
    bool result = false;
    StopOnError([&] {
        LogMsg(L"BeaconConnection.Disconnect begin");
        NeedLink()->Shutdown();
        LogMsg(L"BeaconConnection.Disconnect Removing objects");
        UninitMapiWrapper();
        objLastItem_.Reset();
        DropLink();
        result = true;
        LogMsg(L"BeaconConnection.Disconnect end");
    });
    return result;
}

void BeaconConnection::ReSend(bool bForce) {
    const ComPtr<BeaconConnection> alive(this);
    StopOnError([&] {
        LogMsg(L"Start ReSend(bForce=", bForce ? L"True" : L"False", L")");
        if (bForce) bForceNext_ = true;
        NeedListener()->SendLater();
        LogMsg(L"End ReSend");
    });
}

HRESULT BeaconConnection::ForceUpdate() {
    const ComPtr<BeaconConnection> alive(this);
    strLastBodySignature.clear();
    if (objApplication != nullptr) objApplication->gButtonClicked = true;
    ReSend(true);
    return S_OK;
}

HRESULT BeaconConnection::OnUpdateClicked() {
    globals::gSendNow = true;
    return ForceUpdate();
}

bool BeaconConnection::ToolbarWasRemoved() {
    const ComPtr<CToolbar> toolbar = gToolbar;
    return toolbar != nullptr && !toolbar->CommandBarExists();
}

void BeaconConnection::ReplayPendingClick() {
    if (const ComPtr<CToolbar> toolbar = gToolbar) toolbar->OnConnect();
}

void BeaconConnection::StopToolbarTimer() {
    if (objListener_ != nullptr) objListener_->StopToolbarTimer();
}

ComPtr<ToolbarHost> BeaconConnection::FindConnectionForWindow(long hWnd) {
    const ComPtr<BeaconConnection> found = mServices_.FindConnectionForWindow(hWnd);
    return ComPtr<ToolbarHost>(found.Get());
}

}  // namespace beacon
