#include "toolbar/click_state.h"

namespace beacon {

bool ClickState::IsRepeat(const std::wstring& caption, long id, long window, long long second) const {
    return caption == lastCaption_ && id == lastId_ && window == lastWindow_ && second == lastEvtTime_;
}

void ClickState::Note(const std::wstring& caption, long id, long window, long long second, bool engineReady) {
    g_sPendingButton = engineReady ? std::wstring() : caption;
    g_nPendingButton = engineReady ? 0 : id;
    lastCaption_ = engineReady ? caption : std::wstring();
    lastId_ = engineReady ? id : 0;
    lastWindow_ = window;
    lastEvtTime_ = second;
}

}  // namespace beacon
