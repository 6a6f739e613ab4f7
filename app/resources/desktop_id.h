// What desktops know the programs by: the names of their menu entries, of their windows on Wayland
// and of their icon. The files of that name are in packaging/.
#pragma once

namespace kelvaro {

constexpr char kDesktopId[] = "com.marnstone.Kelvaro";
constexpr char kRendlinkDesktopId[] = "com.marnstone.Kelvaro.Rendlink";

}  // namespace kelvaro
