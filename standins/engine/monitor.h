#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "engine/conversation.h"

namespace beacon::standin {

/// Which of a client's two links: with the controller or with the engine.
enum class Side { Controller, Engine };

/// The channel name a client asks that side's dispatcher by.
inline const wchar_t* ChannelName(Side side) { return side == Side::Controller ? L"AppToController" : L"AppToEngine"; }

/// Everything that happens passes here: it becomes one raw line (always kept by the journal, printed when raw) and, in
/// the live view, what a reader wants to know of it.
class Monitor {
public:
    explicit Monitor(bool raw) : raw_(raw) {}

    void Connected(Side side, long handle);
    /// In order when the client asked for it; otherwise its process ended or does not answer any more.
    void Disconnected(Side side, long handle, bool inOrder);
    void Message(long handle, std::wstring_view text);
    void Control(long handle, std::wstring_view text);
    void Fault(long handle, std::wstring_view text);
    void Note(long handle, std::wstring_view text);

    /// Any other event: a raw line "# text". The live view shows the text.
    void Event(std::wstring_view text);
    /// A command that could not be carried out: "# error text".
    void Error(std::wstring_view text);

    bool HadError() const { return hadError_; }

private:
    void Raw(const std::wstring& line);
    void View(std::wstring_view line);
    void Show(long handle, const std::vector<Observation>& observations);
    Conversation& With(long handle);

    const bool raw_;
    bool hadError_ = false;
    std::map<long, Conversation> conversations_;
};

}  // namespace beacon::standin
