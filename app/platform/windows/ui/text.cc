#include "app/platform/windows/ui/text.h"

#include <algorithm>

#include "app/platform/byte_text.h"
#include "app/platform/windows/ui/system.h"
#include "app/platform/windows/wide_text.h"

namespace platform::ui {

std::wstring Wide(std::string_view bytes) {
  if (!IsUtf8(bytes)) {
    std::wstring text;
    for (const char byte : bytes) text += static_cast<wchar_t>(static_cast<unsigned char>(byte));
    return text;
  }
  return Utf16Of(bytes);
}

std::string Bytes(std::wstring_view text) { return Utf8Of(text); }

bool Latin1Bytes(std::wstring_view text, std::string* bytes) {
  if (std::any_of(text.begin(), text.end(), [](wchar_t c) { return c > 0xFF; })) return false;
  bytes->clear();
  for (const wchar_t c : text) *bytes += static_cast<char>(c);
  return true;
}

std::wstring Marked(std::wstring_view plain) {
  std::wstring marked;
  for (const wchar_t c : plain) marked.append(c == L'&' ? 2 : 1, c);
  return marked;
}

std::wstring WithoutMnemonic(std::wstring_view marked) {
  std::wstring text;
  for (std::size_t i = 0; i < marked.size(); ++i) {
    if (marked[i] == L'&' && ++i == marked.size()) break;
    text += marked[i];
  }
  return text;
}

std::wstring WithLineEnds(std::wstring_view text) {
  std::wstring lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'\n' && (i == 0 || text[i - 1] != L'\r')) lines += L'\r';
    lines += text[i];
  }
  return lines;
}

}  // namespace platform::ui
