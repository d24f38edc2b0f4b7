// The names by which COM knows the control. They never change: pages and registries hold them.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

constexpr StringView kControlName = u"KestrelonCtrl2005";
constexpr StringView kModuleName = u"KestrelonControl2005";
constexpr StringView kProjectName = u"KNControl2005";
constexpr StringView kProgId = u"KNControl2005.KestrelonCtrl2005";

// The class of the control.
constexpr CLSID kControlClass = {
    0x464659AF, 0xEFF8, 0x4458, {0xA2, 0x6F, 0xCF, 0x8B, 0xAA, 0x70, 0xBC, 0xAF}};
constexpr GUID kTypeLibrary = {
    0xC487370F, 0x8763, 0x44D3, {0xA1, 0x28, 0x45, 0x87, 0xD7, 0x9D, 0xAA, 0xFF}};
// `_KestrelonCtrl2005`, the members.
constexpr IID kMembersInterface = {
    0x19935C18, 0xC95F, 0x4213, {0xA3, 0x4D, 0x3C, 0x1F, 0x9C, 0x8E, 0x5F, 0x36}};
// `__KestrelonCtrl2005`, which declares no events.
constexpr IID kEventsInterface = {
    0x633BC4AC, 0xE3B2, 0x453B, {0xA3, 0xD1, 0x90, 0x76, 0x20, 0x3D, 0x1F, 0xF2}};

}  // namespace kestrelon
