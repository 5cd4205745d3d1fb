#pragma once

#include <windows.h>

namespace beacon::standin::events {

// The event interfaces of Outlook's object model and their DISPIDs, which repeat between interfaces.
inline constexpr IID kApplication = {0x0006304E, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kExplorers = {0x00063078, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kInspectors = {0x00063079, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kExplorer = {0x0006304F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kInspector = {0x0006307D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kInspector10 = {0x0006302A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kItem = {0x0006303A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kItem10 = {0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

inline constexpr DISPID kStartup = 0xF006;
inline constexpr DISPID kQuit = 0xF007;
inline constexpr DISPID kNewWindow = 0xF001;  // NewExplorer, NewInspector
inline constexpr DISPID kActivate = 0xF001;
inline constexpr DISPID kViewSwitch = 0xF004;
inline constexpr DISPID kDeactivate = 0xF006;
inline constexpr DISPID kSelectionChange = 0xF007;
inline constexpr DISPID kWindowClose = 0xF008;
inline constexpr DISPID kItemClose = 0xF004;
inline constexpr DISPID kItemBeforeDelete = 0xFA75;  // ItemEvents_10 only

}  // namespace beacon::standin::events
