#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "engine/conversation.h"

namespace beacon::standin {

/// The two channels of a client: to the controller and to the engine.
enum class Side { Controller, Engine };

/// The name by which a client asks for that side's dispatcher.
inline const wchar_t* ChannelName(Side side) { return side == Side::Controller ? L"AppToController" : L"AppToEngine"; }

/// Reports all events: as raw lines, which the journal always records, and as lines of the live view. `raw` decides
/// which of the two is printed.
class Monitor {
public:
    explicit Monitor(bool raw) : raw_(raw) {}

    void Connected(Side side, long handle);
    /// `inOrder`: the client called Disconnect; otherwise its process has ended or does not answer.
    void Disconnected(Side side, long handle, bool inOrder);
    void Message(long handle, std::wstring_view text);
    void Control(long handle, std::wstring_view text);
    void Fault(long handle, std::wstring_view text);
    void Note(long handle, std::wstring_view text);

    /// Any other event: a raw line "# text". The live view shows the text.
    void Event(std::wstring_view text);
    /// A command that failed: a raw line "# error text".
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
