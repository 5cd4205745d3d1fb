#include <windows.h>

#include <beacon_util.h>
#include <objbase.h>

#include <algorithm>
#include <initializer_list>

#include "addin/registration.h"
#include "check/controller.h"
#include "check/logs.h"
#include "check/report.h"
#include "check/settings_in_force.h"
#include "extract/mapi_wrapper.h"
#include "observe/body_text.h"
#include "support/numbers.h"
#include "support/settings.h"

namespace beacon::check {
namespace {

const std::wstring kOfficeKey = L"Software\\Microsoft\\Office";
constexpr DWORD kLoadsAtStartup = 3;

std::wstring ProgId() {
    const std::wstring key = kAddInKey;
    return key.substr(key.rfind(L'\\') + 1);
}

std::wstring BitsText(int bits) { return DecimalText(bits) + L"-bit"; }

std::vector<std::wstring> OfficeVersions(const RegistryView& view, HKEY hive) {
    std::vector<std::wstring> versions = view.SubKeys(hive, kOfficeKey);
    std::erase_if(versions, [](const std::wstring& name) {
        return name.find_first_not_of(L"0123456789.") != std::wstring::npos;
    });
    return versions;
}

/// Newer versions tell their bitness; an older one is what its file is. Keys stay behind when a version is removed.
std::vector<InstalledOutlook> FindOutlooks() {
    std::vector<InstalledOutlook> outlooks;
    for (const int bits : BitsOfSystem()) {
        const RegistryView view(bits);
        for (const std::wstring& version : OfficeVersions(view, HKEY_LOCAL_MACHINE)) {
            const std::wstring key = kOfficeKey + L"\\" + version + L"\\Outlook";
            const std::wstring told = view.Text(HKEY_LOCAL_MACHINE, key, L"Bitness").value_or(L"");
            int found = told == L"x64" ? 64 : told == L"x86" ? 32 : 0;
            const auto folder = view.Text(HKEY_LOCAL_MACHINE, key + L"\\InstallRoot", L"Path");
            if (found == 0 && folder) found = BitsOfFile(*folder + L"\\OUTLOOK.EXE");
            const bool known = std::ranges::any_of(outlooks, [&](const InstalledOutlook& other) {
                return other.version == version && other.bits == found;
            });
            if (found != 0 && !known) outlooks.push_back({version, found});
        }
    }
    return outlooks;
}

/// Builds a report from one question after the other.
class Examination {
public:
    explicit Examination(DWORD patience) : patience_(patience) {}

    Report Run() {
        report_.outlooks = FindOutlooks();
        for (const int bits : BitsOfSystem()) {
            const RegistryView view(bits);
            report_.addIns.push_back({FindServer(view, ProgId()),
                                      view.Number(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior"),
                                      view.Number(HKEY_CURRENT_USER, kAddInKey, L"LoadBehavior")});
        }
        for (const int bits : BitsThatMatter())
            report_.readers.push_back(FindServer(RegistryView(bits), kMapiWrapperProgId));
        for (const Server& reader : report_.readers) LookAtReader(reader);
        LookAtBitness();
        for (const AddIn& addIn : report_.addIns)
            if (Matters(addIn.server.bits)) LookAtAddIn(addIn);
        LookAtDisabledItems();
        LookAtController();
        LookAtSettings();
        LookAtLogFolder();
        return std::move(report_);
    }

private:
    void Find(const char* id, std::wstring what, std::wstring remedy) {
        report_.findings.push_back({id, std::move(what), std::move(remedy)});
    }

    /// Outlook's; while none is known, those that the add-in is registered for, or else this program's own.
    std::vector<int> BitsThatMatter() const {
        std::vector<int> all = BitsOfSystem();
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

    /// The remedy where the installer was used.
    static std::wstring Repairing(int bits) {
        return L"repair \"Beacon Outlook Adapter (" + BitsText(bits) + L")\" in Windows' list of programs";
    }

    void LookAtReader(const Server& reader) {
        const std::wstring name = std::wstring(L"the MAPI property reader (") + kMapiWrapperProgId + L")";
        const std::wstring own = L"regsvr32 BeaconMapiProp.dll, the " + BitsText(reader.bits) + L" one.";
        const std::wstring repair = L"As administrator: " + Repairing(reader.bits);
        if (reader.state == ServerState::NotRegistered)
            Find("reader-not-registered",
                 L"For " + BitsText(reader.bits) + L" programs, " + name +
                     L" is not registered. Without it no mail is ever sent.",
                 repair + L". If it is not there: " + own);
        else  // ours takes the place of no file that is there
            LookAtFile(
                reader, name, {"reader-file-missing", "reader-other-bitness", "reader-does-not-load"},
                repair + L", if that file is its own. Else, if it is there, regsvr32 /u with its path; then " + own);
    }

    struct FileIds {
        const char* missing;
        const char* other;
        const char* broken;
    };

    void LookAtFile(const Server& server, const std::wstring& name, const FileIds& ids, const std::wstring& remedy) {
        const std::wstring what = L"For " + BitsText(server.bits) + L" programs, " + name + L" is registered as \"" +
                                  server.file + L"\", which " + server.problem + L".";
        if (server.state == ServerState::FileMissing) Find(ids.missing, what, remedy);
        if (server.state == ServerState::OtherBitness) Find(ids.other, what, remedy);
        if (server.state == ServerState::DoesNotLoad) Find(ids.broken, what, remedy);
    }

    /// What this program cannot see: files of the other bitness are not loaded, and settings of the machine are apart.
    void LookAtBitness() {
        const std::vector<int> bits = BitsThatMatter();
        if (std::ranges::count(bits, kOwnBits) != 0) return;
        Find("other-program",
             L"This is the " + BitsText(kOwnBits) + L" program, but Outlook or the add-in here is " +
                 BitsText(bits.front()) + L": no file was loaded, and settings of the machine may be others.",
             L"Run the " + BitsText(bits.front()) + L" beacon-check.exe.");
    }

    void LookAtAddIn(const AddIn& addIn) {
        const Server& server = addIn.server;
        const std::wstring programs = L"For " + BitsText(server.bits) + L" programs, ";
        const std::wstring anew = L"As administrator: " + Repairing(server.bits) +
                                  L". If it is not there: regsvr32 BeaconOLKAdapter.dll, the " + BitsText(server.bits) +
                                  L" one, where it is to stay.";
        if (server.state == ServerState::NotRegistered) {
            Find("addin-not-registered", programs + L"the add-in (" + ProgId() + L") is not registered.", anew);
            return;
        }
        LookAtFile(server, L"the add-in", {"addin-file-missing", "addin-other-bitness", "addin-does-not-load"}, anew);
        if (server.threadingModel != L"Apartment")
            Find("addin-threading-model",
                 programs + L"the add-in's threading model is \"" + server.threadingModel +
                     L"\", not \"Apartment\": Outlook would call it from another thread.",
                 anew);
        LookAtLoadBehavior(addIn, anew);
        const RegistryView view(server.bits);
        if (!LibraryIsThere(view, kAddInLibrary, {view.bits}))
            Find("addin-type-library", programs + L"the add-in's type library is not registered, or its file is gone.",
                 anew);
        // Either bitness tells what calls look like, and an engine may be of the other one.
        if (!LibraryIsThere(view, LIBID_BeaconUtilLib, {32, 64}) ||
            !view.Exists(HKEY_CLASSES_ROOT, L"Interface\\" + Text(__uuidof(IMessageDispatch))))
            Find("engine-type-library",
                 programs +
                     L"the engine's type library (BeaconUtilLib) is not registered, or its file is gone: engine and "
                     L"add-in cannot call each other.",
                 L"Install the engine, or repair its installation; an engine registers this library itself.");
    }

    /// Outlook's key of the machine or the user, as editors of the registry name it.
    static std::wstring OutlookKey(int bits, bool isUsers) {
        const std::wstring key = kAddInKey;
        if (isUsers) return L"HKEY_CURRENT_USER\\" + key;
        const std::wstring software = L"Software\\";
        const bool isApart = bits == 32 && BitsOfSystem().size() == 2;
        return L"HKEY_LOCAL_MACHINE\\" + software + (isApart ? L"Wow6432Node\\" : L"") + key.substr(software.size());
    }

    void LookAtLoadBehavior(const AddIn& addIn, const std::wstring& anew) {
        if (!addIn.ofMachine && !addIn.ofUser) {
            Find("outlook-key-missing",
                 BitsText(addIn.server.bits) + L" Outlook does not know the add-in: there is no LoadBehavior below " +
                     OutlookKey(addIn.server.bits, false) + L".",
                 anew);
            return;
        }
        const bool isUsers = addIn.ofUser.has_value();
        const DWORD behavior = isUsers ? *addIn.ofUser : *addIn.ofMachine;
        if (behavior == kLoadsAtStartup) return;
        Find("load-behavior",
             BitsText(addIn.server.bits) + L" Outlook does not start the add-in: LoadBehavior is " +
                 DecimalText(behavior) + (isUsers ? L" for this user" : L" for the machine") +
                 L". It becomes 2 when Outlook could not start the add-in, or when somebody switched it off.",
             L"Mend what else is found here, then switch the add-in on in Outlook's list of COM add-ins, or set "
             L"LoadBehavior to 3 below " +
                 OutlookKey(addIn.server.bits, isUsers) + L".");
    }

    static std::wstring Text(REFGUID id) {
        wchar_t text[40];
        StringFromGUID2(id, text, 40);
        return text;
    }

    static bool LibraryIsThere(const RegistryView& view, REFGUID id, std::initializer_list<int> someBits) {
        return std::ranges::any_of(someBits, [&](int bits) {
            const auto file =
                view.Text(HKEY_CLASSES_ROOT, L"TypeLib\\" + Text(id) + L"\\1.0\\0\\win" + DecimalText(bits));
            // The path may go on with "\" and the number of a resource.
            return file && (FileExists(*file) || FileExists(file->substr(0, file->rfind(L'\\'))));
        });
    }

    static bool FileExists(const std::wstring& file) {
        const DWORD attributes = GetFileAttributesW(file.c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    }

    /// Each value of these lists is a few numbers, then the names of a file and of an add-in in UTF-16.
    void LookAtDisabledItems() {
        const RegistryView view(kOwnBits);
        std::wstring wanted = ProgId();
        wanted.resize(wanted.find(L'.'));  // the DLL's name, too
        for (const std::wstring& version : OfficeVersions(view, HKEY_CURRENT_USER)) {
            for (const wchar_t* list : {L"DisabledItems", L"CrashingAddinList"}) {
                const std::wstring key = kOfficeKey + L"\\" + version + L"\\Outlook\\Resiliency\\" + list;
                for (const auto& [name, bytes] : view.Values(HKEY_CURRENT_USER, key)) {
                    if (!Names(bytes, wanted)) continue;
                    Find("disabled-item",
                         L"Outlook " + version + L" has put the add-in on its list " + list +
                             L": it does not start it any more, because Outlook once ended or started slowly with it.",
                         L"Take it off Outlook's list of disabled items (Help, About, Disabled Items; in newer "
                         L"versions File, Options, Add-ins, Manage), or delete the value \"" +
                             name + L"\" of HKEY_CURRENT_USER\\" + key + L".");
                }
            }
        }
    }

    static bool Names(const std::string& bytes, std::wstring wanted) {
        std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
        bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(wchar_t));
        for (std::wstring* one : {&text, &wanted}) CharLowerBuffW(one->data(), static_cast<DWORD>(one->size()));
        return text.find(wanted) != std::wstring::npos;
    }

    void LookAtController() {
        report_.controller = AskController(patience_);
        const std::wstring name = L"The engine's controller (BeaconController.Application) ";
        switch (report_.controller) {
            case ControllerState::Absent:
                Find("controller-absent",
                     name +
                         L"is not in the running object table: no engine runs, or none that this user's programs see.",
                     L"Start the engine as the user who runs Outlook, neither of them as administrator.");
                break;
            case ControllerState::Hangs:
                Find("controller-hangs", name + L"did not answer within " + DecimalText(patience_) + L" ms.",
                     L"End the engine and start it again. While it hangs inside a call of the add-in, Outlook stands "
                     L"still.");
                break;
            case ControllerState::Fails:
                Find("controller-fails",
                     name + L"does not know GetMessageInterface and GetEngineInterface, or failed when asked.",
                     L"End the engine and start it again; repair its installation.");
                break;
            case ControllerState::Answers: break;
        }
    }

    static bool IsMisread(const SettingInForce& setting) {
        if (!setting.registered || setting.registered->empty() || *setting.registered == setting.value) return false;
        const std::wstring& text = *setting.registered;
        const bool meansOff = text == L"0" || lstrcmpiW(text.c_str(), L"False") == 0;
        return setting.name != std::wstring(setting::kDefaultAutoUpdate) || !meansOff;
    }

    void LookAtSettings() {
        report_.settings = SettingsInForce();
        for (const SettingInForce& setting : report_.settings)
            if (IsMisread(setting))
                Find(
                    "setting-not-used",
                    std::wstring(L"The setting ") + setting.name + L" is \"" + *setting.registered +
                        L"\" in the registry, but \"" + setting.value + L"\" is in force.",
                    L"Write it as docs\\settings.md has it: kind, range and spelling count (\"True\" with a capital).");
        const long units = GetMaxDocUnits();
        if (IsBodyTooShort(std::wstring(static_cast<size_t>(std::max(units, 0L)), L'x')))
            Find("too-few-characters",
                 std::wstring(setting::kMaxDocUnits) + L" is " + DecimalText(units) +
                     L": no more of a body is read, which is too little for any mail to be sent.",
                 std::wstring(L"Delete ") + setting::kMaxDocUnits + L", or set it as docs\\settings.md has it.");
        if (!ReadDefaultAutoUpdate() && GetEnableToolbar() != L"1")
            Find("nothing-sends",
                 L"This user has neither automatic update nor the command bar: nothing is sent until an engine asks.",
                 std::wstring(L"Set ") + setting::kDefaultAutoUpdate + L" to \"True\", " + setting::kEnableToolbar +
                     L" to \"1\", or both (docs\\settings.md); the installer does so for the user who installs.");
    }

    void LookAtLogFolder() {
        report_.logs = LookAtLogs();
        const Logs& logs = report_.logs;
        if (logs.on && !logs.exists)
            Find("log-folder-missing",
                 logs.folder.empty()
                     ? L"Logging is on, but the variable AppData does not tell where to."
                     : L"Logging is on, but nothing is written: the add-in does not make the folder " + logs.folder,
                 L"beacon-check --make-log-folder makes it.");
        if (logs.exceptionCount != 0)
            Find("exceptions-logged",
                 L"The logs of the last Outlook have " + DecimalText(static_cast<std::int64_t>(logs.exceptionCount)) +
                     L" lines \"Exception in ...\"; the last ones are shown with the logs.",
                 L"Send both logs with your report. They hold subjects and texts of mails.");
    }

    const DWORD patience_;
    Report report_;
};

}  // namespace

Report Examine(DWORD patience) { return Examination(patience).Run(); }

}  // namespace beacon::check
