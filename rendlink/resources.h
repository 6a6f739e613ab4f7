// What the window is made of, as data.
#pragma once

#include <cstdint>

#include "app/platform/dialog_template.h"

namespace kelvaro::rendlink {

constexpr std::uint32_t kDialogId = 200;
constexpr std::uint32_t kProfiles = 2001;
constexpr std::uint32_t kTarget = 2003;
constexpr std::uint32_t kBrowseTarget = 2004;
constexpr std::uint32_t kArguments = 2006;
constexpr std::uint32_t kFolder = 2008;
constexpr std::uint32_t kBrowseFolder = 2009;
constexpr std::uint32_t kCommand = 2011;
constexpr std::uint32_t kPlace = 2013;
constexpr std::uint32_t kSave = 2014;
constexpr std::uint32_t kStart = 2015;

extern const platform::DialogTemplate kDialog;

// The tip of a control; empty for none.
const char* ToolTip(std::uint32_t id);

}  // namespace kelvaro::rendlink
