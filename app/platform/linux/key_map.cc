#include "app/platform/linux/key_map.h"

#include <linux/input-event-codes.h>

#include <array>
#include <set>

namespace platform {
namespace {

struct Row {
  std::uint8_t from;
  std::uint16_t to;
};

// Plain scan codes 0x01 to 0x53 and 0x56 to 0x58 are the kernel's codes themselves; these are the
// others. Power, sleep and wake-up are left out: a keyboard that announces them is taken for the
// machine's power button.
constexpr Row kScanRows[] = {
    {0x54, KEY_SYSRQ},
    {0x64, KEY_F13},
    {0x65, KEY_F14},
    {0x66, KEY_F15},
    {0x70, KEY_KATAKANAHIRAGANA},
    {0x73, KEY_RO},
    {0x79, KEY_HENKAN},
    {0x7B, KEY_MUHENKAN},
    {0x7D, KEY_YEN},
    {0x7E, KEY_KPCOMMA},
    {0x8D, KEY_KPEQUAL},
    {0x90, KEY_PREVIOUSSONG},
    {0x94, KEY_ZENKAKUHANKAKU},
    {0x95, KEY_STOP},
    {0x99, KEY_NEXTSONG},
    {0x9C, KEY_KPENTER},
    {0x9D, KEY_RIGHTCTRL},
    {0xA0, KEY_MUTE},
    {0xA1, KEY_CALC},
    {0xA2, KEY_PLAYPAUSE},
    {0xA4, KEY_STOPCD},
    {0xAE, KEY_VOLUMEDOWN},
    {0xB0, KEY_VOLUMEUP},
    {0xB2, KEY_HOMEPAGE},
    {0xB3, KEY_KPCOMMA},
    {0xB5, KEY_KPSLASH},
    {0xB7, KEY_SYSRQ},
    {0xB8, KEY_RIGHTALT},
    {0xC5, KEY_PAUSE},
    {0xC7, KEY_HOME},
    {0xC8, KEY_UP},
    {0xC9, KEY_PAGEUP},
    {0xCB, KEY_LEFT},
    {0xCD, KEY_RIGHT},
    {0xCF, KEY_END},
    {0xD0, KEY_DOWN},
    {0xD1, KEY_PAGEDOWN},
    {0xD2, KEY_INSERT},
    {0xD3, KEY_DELETE},
    {0xDB, KEY_LEFTMETA},
    {0xDC, KEY_RIGHTMETA},
    {0xDD, KEY_COMPOSE},
    {0xE5, KEY_SEARCH},
    {0xE6, KEY_BOOKMARKS},
    {0xE7, KEY_REFRESH},
    {0xE8, KEY_STOP},
    {0xE9, KEY_FORWARD},
    {0xEA, KEY_BACK},
    {0xEB, KEY_COMPUTER},
    {0xEC, KEY_MAIL},
    {0xED, KEY_MEDIA},
};

// Letters, digits and function keys are ranges of their own below. Mouse
// buttons other than 5 and 6 are no keys. The kernel has nothing for Attn (0xF6) and ExSel (0xF8).
constexpr Row kVirtualKeyRows[] = {
    {0x03, KEY_CANCEL},       {0x05, BTN_SIDE},
    {0x06, BTN_EXTRA},        {0x08, KEY_BACKSPACE},
    {0x09, KEY_TAB},          {0x0C, KEY_CLEAR},
    {0x0D, KEY_ENTER},        {0x10, KEY_LEFTSHIFT},
    {0x11, KEY_LEFTCTRL},     {0x12, KEY_LEFTALT},
    {0x13, KEY_PAUSE},        {0x14, KEY_CAPSLOCK},
    {0x1B, KEY_ESC},          {0x1C, KEY_HENKAN},
    {0x1D, KEY_MUHENKAN},     {0x20, KEY_SPACE},
    {0x21, KEY_PAGEUP},       {0x22, KEY_PAGEDOWN},
    {0x23, KEY_END},          {0x24, KEY_HOME},
    {0x25, KEY_LEFT},         {0x26, KEY_UP},
    {0x27, KEY_RIGHT},        {0x28, KEY_DOWN},
    {0x29, KEY_SELECT},       {0x2A, KEY_PRINT},
    {0x2C, KEY_SYSRQ},        {0x2D, KEY_INSERT},
    {0x2E, KEY_DELETE},       {0x2F, KEY_HELP},
    {0x5B, KEY_LEFTMETA},     {0x5C, KEY_RIGHTMETA},
    {0x5D, KEY_COMPOSE},      {0x6A, KEY_KPASTERISK},
    {0x6B, KEY_KPPLUS},       {0x6C, KEY_KPCOMMA},
    {0x6D, KEY_KPMINUS},      {0x6E, KEY_KPDOT},
    {0x6F, KEY_KPSLASH},      {0x90, KEY_NUMLOCK},
    {0x91, KEY_SCROLLLOCK},   {0xA0, KEY_LEFTSHIFT},
    {0xA1, KEY_RIGHTSHIFT},   {0xA2, KEY_LEFTCTRL},
    {0xA3, KEY_RIGHTCTRL},    {0xA4, KEY_LEFTALT},
    {0xA5, KEY_RIGHTALT},     {0xA6, KEY_BACK},
    {0xA7, KEY_FORWARD},      {0xA8, KEY_REFRESH},
    {0xA9, KEY_STOP},         {0xAA, KEY_SEARCH},
    {0xAB, KEY_BOOKMARKS},    {0xAC, KEY_HOMEPAGE},
    {0xAD, KEY_MUTE},         {0xAE, KEY_VOLUMEDOWN},
    {0xAF, KEY_VOLUMEUP},     {0xB0, KEY_NEXTSONG},
    {0xB1, KEY_PREVIOUSSONG}, {0xB2, KEY_STOPCD},
    {0xB3, KEY_PLAYPAUSE},    {0xB4, KEY_MAIL},
    {0xB5, KEY_MEDIA},        {0xB6, KEY_COMPUTER},
    {0xB7, KEY_CALC},         {0xBA, KEY_SEMICOLON},
    {0xBB, KEY_EQUAL},        {0xBC, KEY_COMMA},
    {0xBD, KEY_MINUS},        {0xBE, KEY_DOT},
    {0xBF, KEY_SLASH},        {0xC0, KEY_GRAVE},
    {0xDB, KEY_LEFTBRACE},    {0xDC, KEY_BACKSLASH},
    {0xDD, KEY_RIGHTBRACE},   {0xDE, KEY_APOSTROPHE},
    {0xE2, KEY_102ND},        {0xF7, KEY_PROPS},  // CrSel: a USB keyboard has one key for both
    {0xF9, KEY_DEL_EOL},      {0xFA, KEY_PLAY},
    {0xFB, KEY_ZOOM},         {0xFE, KEY_CLEAR},
};

// Virtual keys that follow one another, with their kernel codes.
struct Range {
  std::uint8_t first;
  std::uint8_t count;
  std::uint16_t codes[26];
};

constexpr Range kVirtualKeyRanges[] = {
    {0x30, 10, {KEY_0, KEY_1, KEY_2, KEY_3, KEY_4, KEY_5, KEY_6, KEY_7, KEY_8, KEY_9}},
    {'A', 26, {KEY_A, KEY_B, KEY_C, KEY_D, KEY_E, KEY_F, KEY_G, KEY_H, KEY_I,
               KEY_J, KEY_K, KEY_L, KEY_M, KEY_N, KEY_O, KEY_P, KEY_Q, KEY_R,
               KEY_S, KEY_T, KEY_U, KEY_V, KEY_W, KEY_X, KEY_Y, KEY_Z}},
    {0x60,
     10,
     {KEY_KP0, KEY_KP1, KEY_KP2, KEY_KP3, KEY_KP4, KEY_KP5, KEY_KP6, KEY_KP7, KEY_KP8, KEY_KP9}},
    {0x70, 24, {KEY_F1,  KEY_F2,  KEY_F3,  KEY_F4,  KEY_F5,  KEY_F6,  KEY_F7,  KEY_F8,
                KEY_F9,  KEY_F10, KEY_F11, KEY_F12, KEY_F13, KEY_F14, KEY_F15, KEY_F16,
                KEY_F17, KEY_F18, KEY_F19, KEY_F20, KEY_F21, KEY_F22, KEY_F23, KEY_F24}},
};

using Table = std::array<std::uint16_t, 256>;

constexpr Table ScanTable() {
  Table table{};
  for (std::uint16_t scan = 0x01; scan <= 0x53; ++scan) table[scan] = scan;
  for (std::uint16_t scan = 0x56; scan <= 0x58; ++scan) table[scan] = scan;
  for (const Row& row : kScanRows) table[row.from] = row.to;
  return table;
}

constexpr Table VirtualKeyTable() {
  Table table{};
  for (const Range& range : kVirtualKeyRanges)
    for (std::uint8_t i = 0; i < range.count; ++i)
      table[static_cast<std::size_t>(range.first + i)] = range.codes[i];
  for (const Row& row : kVirtualKeyRows) table[row.from] = row.to;
  return table;
}

constexpr Table kByScan = ScanTable();
constexpr Table kByVirtualKey = VirtualKeyTable();

}  // namespace

std::uint16_t KernelKeyCode(std::uint8_t vk, std::uint8_t scan) {
  return scan != 0 ? kByScan[scan] : kByVirtualKey[vk];
}

bool DependsOnNumLock(std::uint16_t code) {
  return code >= KEY_KP7 && code <= KEY_KPDOT && code != KEY_KPMINUS && code != KEY_KPPLUS;
}

bool IsInX(std::uint16_t code) { return code <= 247 || code == BTN_SIDE || code == BTN_EXTRA; }

std::vector<std::uint16_t> KernelKeyboardCodes() {
  std::set<std::uint16_t> codes;
  for (const Table* table : {&kByScan, &kByVirtualKey})
    for (const std::uint16_t code : *table)
      if (code != 0 && code != BTN_SIDE && code != BTN_EXTRA) codes.insert(code);
  return {codes.begin(), codes.end()};
}

}  // namespace platform
