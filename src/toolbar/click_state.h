#pragma once

#include <string>

namespace beacon {

/// What the toolbar remembers of the last click: enough to drop a repeat within one second of the clock, and to carry
/// out again, once the engine is up, a click that came too early.
class ClickState {
public:
    /// The same button in the same window within the same second of the clock as the last click. `second` counts
    /// seconds from any fixed start other than the time of the click.
    bool IsRepeat(const std::wstring& caption, long id, long window, long long second) const;

    /// Notes a click that is about to be carried out. With an engine that is not ready the click is parked as well, and
    /// its replay will not count as a repeat.
    void Note(const std::wstring& caption, long id, long window, long long second, bool engineReady);

    /// The parked click; an id of 0 means none.
    std::wstring g_sPendingButton;
    long g_nPendingButton = 0;

private:
    std::wstring lastCaption_;
    long lastId_ = 0;
    long lastWindow_ = 0;
    long long lastEvtTime_ = 0;
};

}  // namespace beacon
