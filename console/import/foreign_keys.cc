#include "console/import/foreign_keys.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "keys/key_tables.h"

namespace kelvaro::console {
namespace {

struct NamedKey {
  std::uint32_t code;
  const char* name;
};

// The characters of the keys from the kernel's code 2 on; a blank where no character stands.
constexpr char kTyped[] = "1234567890-=  qwertyuiop[]  asdfghjkl;'` \\zxcvbnm,./";
constexpr std::uint32_t kFirstTyped = 2 + 8;

constexpr NamedKey kX11Keys[] = {
    {9, "Esc"},           {22, "Backspace"},
    {23, "TAB"},          {36, "Enter"},
    {37, "Ctrl"},         {50, "Shift"},
    {62, "RShift"},       {63, "NP*"},
    {64, "Alt"},          {65, "Space"},
    {66, "CAPS"},         {67, "F1"},
    {68, "F2"},           {69, "F3"},
    {70, "F4"},           {71, "F5"},
    {72, "F6"},           {73, "F7"},
    {74, "F8"},           {75, "F9"},
    {76, "F10"},          {77, "Numlock"},
    {78, "Scroll"},       {79, "NP7"},
    {80, "NP8"},          {81, "NP9"},
    {82, "NP-"},          {83, "NP4"},
    {84, "NP5"},          {85, "NP6"},
    {86, "NP+"},          {87, "NP1"},
    {88, "NP2"},          {89, "NP3"},
    {90, "NP0"},          {91, "NP."},
    {95, "F11"},          {96, "F12"},
    {104, "NPEnter"},     {105, "RCtrl"},
    {106, "NP/"},         {107, "Snapshot"},
    {108, "RAlt"},        {110, "Home"},
    {111, "Up"},          {112, "PgUp"},
    {113, "Left"},        {114, "Right"},
    {115, "End"},         {116, "Down"},
    {117, "PgDown"},      {118, "Insert"},
    {119, "Del"},         {121, "VolMute"},
    {122, "VolDn"},       {123, "VolUp"},
    {127, "Pause"},       {133, "Win"},
    {134, "RWin"},        {135, "Menu"},
    {136, "BrowserStop"}, {138, "CrSel"},
    {146, "Help"},        {148, "StartApp2"},
    {163, "StartMail"},   {164, "BrowserFav"},
    {165, "StartApp1"},   {166, "BrowserBack"},
    {171, "MediaNext"},   {167, "BrowserForward"},
    {172, "MediaPP"},     {173, "MediaPrev"},
    {174, "MediaStop"},   {180, "BrowserHome"},
    {215, "Play"},        {181, "BrowserRefresh"},
    {231, "Cancel"},      {225, "BrowserSrch"},
    {234, "MediaSel"},
};

constexpr NamedKey kQtKeys[] = {
    {0x1000000, "Esc"},
    {0x1000001, "TAB"},
    {0x1000003, "Backspace"},
    {0x1000004, "Enter"},
    {0x1000005, "NPEnter"},
    {0x1000006, "Insert"},
    {0x1000007, "Del"},
    {0x1000008, "Pause"},
    {0x1000009, "Snapshot"},
    {0x100000A, "Snapshot"},
    {0x1000010, "Home"},
    {0x1000011, "End"},
    {0x1000012, "Left"},
    {0x1000013, "Up"},
    {0x1000014, "Right"},
    {0x1000015, "Down"},
    {0x1000016, "PgUp"},
    {0x1000017, "PgDown"},
    {0x1000020, "Shift"},
    {0x1000021, "Ctrl"},
    {0x1000022, "Win"},
    {0x1000023, "Alt"},
    {0x1000024, "CAPS"},
    {0x1000025, "Numlock"},
    {0x1000026, "Scroll"},
    {0x1000030, "F1"},
    {0x1000031, "F2"},
    {0x1000032, "F3"},
    {0x1000033, "F4"},
    {0x1000034, "F5"},
    {0x1000035, "F6"},
    {0x1000036, "F7"},
    {0x1000037, "F8"},
    {0x1000038, "F9"},
    {0x1000039, "F10"},
    {0x100003A, "F11"},
    {0x100003B, "F12"},
    {0x1000053, "Win"},
    {0x1000054, "RWin"},
    {0x1000055, "Menu"},
    {0x1000058, "Help"},
    {0x1000061, "BrowserBack"},
    {0x1000063, "BrowserStop"},
    {0x1000064, "BrowserRefresh"},
    {0x1000062, "BrowserForward"},
    {0x1000070, "VolDn"},
    {0x1000071, "VolMute"},
    {0x1000072, "VolUp"},
    {0x1000080, "MediaPP"},
    {0x1000081, "MediaStop"},
    {0x1000082, "MediaPrev"},
    {0x1000083, "MediaNext"},
    {0x1000086, "MediaPP"},
    {0x1000090, "BrowserHome"},
    {0x1000091, "BrowserFav"},
    {0x1000092, "BrowserSrch"},
    {0x10000A0, "StartMail"},
    {0x10000A1, "MediaSel"},
    {0x10000A2, "StartApp1"},
    {0x10000A3, "StartApp2"},
    {0x1001103, "RAlt"},
    {0x1020001, "Cancel"},
    {0x1020005, "Play"},
    {0x1020006, "Zoom"},
    // With the mark of the right side or the number pad.
    {0x11000005, "NPEnter"},
    {0x11000006, "NP0"},
    {0x1100000B, "NP5"},
    {0x11000010, "NP7"},
    {0x11000011, "NP1"},
    {0x11000012, "NP4"},
    {0x11000013, "NP8"},
    {0x11000014, "NP6"},
    {0x11000015, "NP2"},
    {0x11000016, "NP9"},
    {0x11000017, "NP3"},
    {0x11000007, "NP."},
    {0x11000020, "RShift"},
    {0x11000021, "RCtrl"},
    {0x11000022, "RWin"},
    {0x11000023, "RAlt"},
    {0x1000002A, "NP*"},
    {0x1000002B, "NP+"},
    {0x1000002D, "NP-"},
    {0x1000002E, "NP."},
    {0x1000002F, "NP/"},
    {0x10000030, "NP0"},
    {0x10000031, "NP1"},
    {0x10000032, "NP2"},
    {0x10000033, "NP3"},
    {0x10000034, "NP4"},
    {0x10000035, "NP5"},
    {0x10000036, "NP6"},
    {0x10000037, "NP7"},
    {0x10000038, "NP8"},
    {0x10000039, "NP9"},
};

constexpr NamedKey kMouseButtons[] = {
    {1, "LMouse"}, {2, "MMouse"}, {3, "RMouse"}, {8, "X1Mouse"}, {9, "X2Mouse"},
};

template <std::size_t N>
std::string Named(const NamedKey (&keys)[N], std::uint32_t code) {
  const auto* const key = std::find_if(std::begin(keys), std::end(keys),
                                       [code](const NamedKey& each) { return each.code == code; });
  return key == std::end(keys) ? "" : "<" + std::string(key->name) + ">";
}

}  // namespace

std::string KeyOfX11(std::uint32_t code) {
  if (code >= kFirstTyped && code - kFirstTyped < std::strlen(kTyped)) {
    const char typed = kTyped[code - kFirstTyped];
    if (typed != ' ') return KeyOfCharacter(typed);
  }
  return Named(kX11Keys, code);
}

std::string KeyOfQt(std::uint32_t code) {
  // Qt names a letter's key by the capital.
  if (code >= 'A' && code <= 'Z') return std::string(1, static_cast<char>(code - 'A' + 'a'));
  if (code <= '~') return KeyOfCharacter(static_cast<char>(code));
  return Named(kQtKeys, code);
}

std::string MouseButtonKey(std::uint32_t button) { return Named(kMouseButtons, button); }

std::string KeyOfCharacter(char character) {
  KeyStep key;
  if (!FindTypedKey(character, &key)) return "";
  if (character == '<') return "<<";
  return character == ' ' ? "<Space>" : std::string(1, character);
}

bool IsModifierKey(const std::string& key) {
  for (const char* const name : {"<Shift>", "<RShift>", "<Ctrl>", "<RCtrl>", "<Alt>", "<RAlt>"}) {
    if (key == name) return true;
  }
  return false;
}

bool IsMouseKey(const std::string& key) {
  return key == "<LMouse>" || key == "<MMouse>" || key == "<RMouse>";
}

}  // namespace kelvaro::console
