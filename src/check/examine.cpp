#include <windows.h>

#include <beacon_olk_adapter.h>
#include <beacon_util.h>
#include <objbase.h>

#include <algorithm>
#include <initializer_list>

#include "addin/registration.h"
#include "check/controller.h"
#include "check/finding_texts.h"
#include "check/logs.h"
#include "check/report.h"
#include "check/settings_in_force.h"
#include "observe/body_text.h"
#include "support/numbers.h"
#include "support/settings.h"

namespace beacon::check {
namespace {

const std::wstring kOfficeKey = L"Software\\Microsoft\\Office";
constexpr DWORD kLoadsAtStartup = 3;

using Values = std::initializer_list<std::wstring>;

/// Replaces %1, %2 ... in a text.
std::wstring Filled(std::wstring text, Values values) {
    for (size_t at = 0; (at = text.find(L'%', at)) != std::wstring::npos;) {
        const std::wstring& value = values.begin()[text[at + 1] - L'1'];
        text.replace(at, 2, value);
        at += value.size();
    }
    return text;
}

std::vector<std::wstring> OfficeVersions(const RegistryView& view, HKEY hive) {
    std::vector<std::wstring> versions = view.SubKeys(hive, kOfficeKey);
    std::erase_if(versions, [](const std::wstring& name) {
        return name.find_first_not_of(L"0123456789.") != std::wstring::npos;
    });
    return versions;
}

/// Keys and their value "Bitness" remain when a version is removed, so only a program that exists counts.
std::vector<InstalledOutlook> FindOutlooks() {
    std::vector<InstalledOutlook> outlooks;
    for (const int bits : BitsOfSystem()) {
        const RegistryView view(bits);
        for (const std::wstring& version : OfficeVersions(view, HKEY_LOCAL_MACHINE)) {
            const auto folder =
                view.Text(HKEY_LOCAL_MACHINE, kOfficeKey + L"\\" + version + L"\\Outlook\\InstallRoot", L"Path");
            const int found = folder ? BitsOfFile(*folder + L"\\OUTLOOK.EXE") : 0;
            const bool known = std::ranges::any_of(outlooks, [&](const InstalledOutlook& other) {
                return other.version == version && other.bits == found;
            });
            if (found != 0 && !known) outlooks.push_back({version, found});
        }
    }
    return outlooks;
}

bool LibraryIsThere(const RegistryView& view, REFGUID id, std::initializer_list<int> someBits) {
    return std::ranges::any_of(someBits, [&](int bits) {
        const auto file =
            view.Text(HKEY_CLASSES_ROOT, L"TypeLib\\" + com::GuidText(id) + L"\\1.0\\0\\win" + DecimalText(bits));
        // The path may end in "\" and the number of a resource.
        return file && (FileExists(*file) || FileExists(file->substr(0, file->rfind(L'\\'))));
    });
}

/// Whether the bytes, UTF-16 text among them, contain the word in any case.
bool Contains(const std::string& bytes, std::wstring word) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(wchar_t));
    for (std::wstring* one : {&text, &word}) CharLowerBuffW(one->data(), static_cast<DWORD>(one->size()));
    return text.find(word) != std::wstring::npos;
}

std::wstring RepairText(int bits, const ServerTexts& texts) { return Filled(kRepair, {DecimalText(bits), texts.file}); }

/// What makes the product's own file the server again. A wrong file of ours must go first, because a repair keeps
/// files of the same version; another product's server must go, because ours does not replace it.
std::wstring ServerRemedy(const Server& server, const ServerTexts& texts, const std::wstring& repair) {
    if (server.state == ServerState::NotRegistered) return repair;
    if (server.ofUser) return L"Delete the key \"" + server.key + L"\".";
    const size_t name = server.file.find_last_of(L"\\/") + 1;
    if (lstrcmpiW(server.file.c_str() + name, texts.file) != 0)
        return L"Delete the key \"" + server.key + L"\". " + repair;
    return server.state == ServerState::FileMissing ? repair : L"Delete the file \"" + server.file + L"\". " + repair;
}

class Examination {
public:
    explicit Examination(DWORD timeout) : timeout_(timeout) {}

    Report Run() {
        report_.outlooks = FindOutlooks();
        for (const int bits : BitsOfSystem()) {
            const RegistryView view(bits);
            report_.addIns.push_back({FindServer(view, kAddIn.progId, kAddIn.classId),
                                      view.Number(HKEY_LOCAL_MACHINE, kAddInKey, kLoadBehaviorName),
                                      view.Number(HKEY_CURRENT_USER, kAddInKey, kLoadBehaviorName)});
        }
        for (const int bits : BitsThatMatter())
            report_.readers.push_back(FindServer(RegistryView(bits), kReader.progId, kReader.classId));
        CheckPrograms();
        for (const Server& reader : report_.readers) CheckServer(reader, kReader);
        for (const AddIn& addIn : report_.addIns)
            if (Matters(addIn.server.bits)) CheckAddIn(addIn);
        CheckDisabledItems();
        CheckController();
        CheckSettings();
        CheckLogs();
        return std::move(report_);
    }

private:
    static constexpr wchar_t kLoadBehaviorName[] = L"LoadBehavior";

    void Find(const FindingText& text, Values values = {}, const char* id = nullptr) {
        report_.findings.push_back(
            {id != nullptr ? id : text.id, Filled(text.what, values), Filled(text.remedy, values)});
    }

    /// Outlook's; if none is known, those that the add-in is registered for, or else this program's own.
    std::vector<int> BitsThatMatter() const {
        const std::vector<int> all = BitsOfSystem();
        const auto isOutlooks = [this](int bits) {
            return std::ranges::any_of(report_.outlooks, [bits](const auto& outlook) { return outlook.bits == bits; });
        };
        const auto isRegistered = [this](int bits) {
            return std::ranges::any_of(report_.addIns, [bits](const AddIn& addIn) {
                return addIn.server.bits == bits &&
                       (addIn.server.state != ServerState::NotRegistered || addIn.ofMachine);
            });
        };
        std::vector<int> some;
        std::ranges::copy_if(all, std::back_inserter(some), isOutlooks);
        if (some.empty()) std::ranges::copy_if(all, std::back_inserter(some), isRegistered);
        if (some.empty()) some = {kOwnBits};
        return some;
    }

    bool Matters(int bits) const { return std::ranges::count(BitsThatMatter(), bits) != 0; }

    /// Limits of this run: files of the other bitness, and perhaps those of the user, are not loaded.
    void CheckPrograms() {
        if (report_.outlooks.empty()) Find(kOutlookNotFound);
        if (!Matters(kOwnBits)) Find(kOtherProgram, {DecimalText(kOwnBits), DecimalText(BitsThatMatter().front())});
        const auto isSkipped = [](const Server& server) {
            return server.ofUser && server.bits == kOwnBits && server.state == ServerState::NotTried;
        };
        if (std::ranges::any_of(report_.readers, isSkipped) ||
            std::ranges::any_of(report_.addIns, isSkipped, &AddIn::server))
            Find(kElevated);
    }

    void CheckServer(const Server& server, const ServerTexts& texts) {
        const std::wstring bits = DecimalText(server.bits);
        const std::wstring repair = RepairText(server.bits, texts);
        const std::wstring remedy = ServerRemedy(server, texts, repair);
        const auto state = static_cast<size_t>(server.state);
        if (server.state == ServerState::NotRegistered)
            Find(kNotRegistered, {bits, texts.name, texts.progId, texts.consequence, remedy}, texts.stateIds[state]);
        else if (state < std::size(texts.stateIds))
            Find(kBadFile, {bits, texts.name, server.file, server.problem, texts.consequence, remedy},
                 texts.stateIds[state]);
        const auto is = [&](const wchar_t* model) { return lstrcmpiW(server.threadingModel.c_str(), model) == 0; };
        if (server.state == ServerState::Loads && !is(L"Apartment") && !is(L"Both"))
            Find(kThreadingModel, {bits, texts.name, server.threadingModel, repair}, texts.threadingModelId);
    }

    void CheckAddIn(const AddIn& addIn) {
        CheckServer(addIn.server, kAddIn);
        if (addIn.server.state == ServerState::NotRegistered) return;
        const std::wstring bits = DecimalText(addIn.server.bits);
        const std::wstring repair = RepairText(addIn.server.bits, kAddIn);
        CheckLoadBehavior(addIn, repair);
        const RegistryView view(addIn.server.bits);
        if (addIn.server.state != ServerState::FileMissing &&
            !LibraryIsThere(view, LIBID_BeaconOLKAdapter, {view.bits}))
            Find(kAddInTypeLibrary, {bits, repair});
        // The library of either bitness describes the calls, and an engine may have the other one.
        if (!LibraryIsThere(view, LIBID_BeaconUtilLib, {32, 64}) ||
            !view.Exists(HKEY_CLASSES_ROOT, L"Interface\\" + com::GuidText(__uuidof(IMessageDispatch))))
            Find(kEngineTypeLibrary, {bits});
    }

    void CheckLoadBehavior(const AddIn& addIn, const std::wstring& repair) {
        const RegistryView view(addIn.server.bits);
        const std::wstring bits = DecimalText(view.bits);
        const std::wstring ofMachine = view.MachineKeyName(std::wstring(kAddInKey).substr(9));
        const std::wstring ofUser = std::wstring(L"HKEY_CURRENT_USER\\") + kAddInKey;
        const std::wstring deletion = L"delete the value LoadBehavior";
        for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
            const bool isUsers = hive == HKEY_CURRENT_USER;
            const auto text = view.Text(hive, kAddInKey, kLoadBehaviorName);
            const auto number = isUsers ? addIn.ofUser : addIn.ofMachine;
            if (!text && !number) continue;
            const std::wstring shown = text ? L"the text \"" + *text + L"\"" : DecimalText(*number);
            const bool falls = isUsers && addIn.ofMachine == kLoadsAtStartup;
            if (text || number != kLoadsAtStartup)
                Find(kLoadBehavior, {bits, shown, isUsers ? ofUser : ofMachine,
                                     falls ? deletion : L"set LoadBehavior to the number (REG_DWORD) 3"});
            return;  // the user's value overrides the machine's
        }
        Find(kOutlookKeyMissing, {bits, ofMachine, repair});
    }

    /// Each value of these lists is a few numbers, then the names of a file and of an add-in in UTF-16.
    void CheckDisabledItems() {
        const RegistryView view(kOwnBits);
        std::wstring name = kAddIn.file;
        name.resize(name.find(L'.'));  // also the beginning of the ProgID
        for (const std::wstring& version : OfficeVersions(view, HKEY_CURRENT_USER)) {
            for (const wchar_t* list : {L"DisabledItems", L"CrashingAddinList"}) {
                const std::wstring key = kOfficeKey + L"\\" + version + L"\\Outlook\\Resiliency\\" + list;
                for (const auto& [value, bytes] : view.Values(HKEY_CURRENT_USER, key))
                    if (Contains(bytes, name))
                        Find(kDisabledItem, {version, list, value, L"HKEY_CURRENT_USER\\" + key});
            }
        }
    }

    void CheckController() {
        report_.controller = AskController(timeout_);
        switch (report_.controller) {
            case ControllerState::Absent: Find(kControllerAbsent); break;
            case ControllerState::Hangs: Find(kControllerHangs, {DecimalText(timeout_)}); break;
            case ControllerState::Fails: Find(kControllerFails); break;
            case ControllerState::Answers: break;
        }
    }

    void CheckSettings() {
        report_.settings = SettingsInForce();
        for (const SettingInForce& setting : report_.settings)
            if (IsMisread(setting)) Find(kSettingNotUsed, {setting.name, *setting.registered, setting.value});
        const long units = GetMaxDocUnits();
        if (IsBodyTooShort(std::wstring(static_cast<size_t>(std::max(units, 0L)), L'x')))
            Find(kTooFewCharacters, {DecimalText(units)});
        if (!ReadDefaultAutoUpdate() && GetEnableToolbar() != L"1") Find(kNothingSends);
    }

    void CheckLogs() {
        report_.logs = ReadLogs();
        const Logs& logs = report_.logs;
        if (logs.on && logs.folder.empty())
            Find(kLogFolderUnknown);
        else if (logs.on && !logs.exists)
            Find(logs.blockedBy.empty() ? kLogFolderMissing : kLogFolderBlocked,
                 {logs.blockedBy.empty() ? logs.folder : logs.blockedBy});
        for (const std::wstring& file : logs.unwritable)
            if (logs.on) Find(kLogReadOnly, {file});
        if (logs.exceptionCount != 0)
            Find(kExceptionsLogged, {DecimalText(static_cast<std::int64_t>(logs.exceptionCount))});
    }

    const DWORD timeout_;
    Report report_;
};

}  // namespace

Report Examine(DWORD timeout) { return Examination(timeout).Run(); }

}  // namespace beacon::check
