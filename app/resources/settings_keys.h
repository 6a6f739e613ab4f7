// Where settings lie below the roots of the registry, and those of the product that came before.
#pragma once

namespace kelvaro {

constexpr char kProductKey[] = "Software\\Marnstone\\Kelvaro";
constexpr char kFormerProductKey[] = "Software\\Marnstone\\Vendrix";
constexpr char kRunKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr char kLastDevice[] = "Last Device";  // a value of kProductKey
constexpr char kMainWindowSubkey[] = "Main Window Settings";
constexpr char kControlWindowSubkey[] = "Control Window Settings";

}  // namespace kelvaro
