#include <cstring>
#include <memory>

#include "app/main_window.h"
#include "app/platform/controls.h"
#include "app/platform/files.h"
#include "app/platform/shell.h"
#include "foundation/paths.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kProfileList = 1001;
constexpr std::uint8_t kLastBlank = 32;  // every byte up to it counts as one

// What stands behind `key` at the start of the text, in any letter case. False, with *rest
// untouched, when the text starts otherwise.
bool TakeKey(const ByteString& text, const char* key, ByteString* rest) {
  const auto length = static_cast<std::int32_t>(std::strlen(key));
  if (text.Left(length).Compare(ByteString(key), true) != 0) return false;
  *rest = text.Right(static_cast<std::int32_t>(text.Length()) - length);
  return true;
}

bool IsBlank(char c) { return static_cast<std::uint8_t>(c) <= kLastBlank; }

}  // namespace

// A double quote begins and ends a token's quoted part, in which blanks are no end; it is dropped
// itself. The one that ends the part ends the token, too: a"b c"d is two tokens.
void SplitCommandLine(const ByteString& text, LinkedList<ByteString>* list) {
  ByteString line = text;
  line.Trim(0, kLastBlank);
  std::uint32_t at = 0;
  while (at < line.Length()) {
    ByteString token;
    bool quoted = false;
    while (at < line.Length()) {
      const char c = line[at++];
      if (c == '"') {
        if (quoted) break;
        quoted = true;
      } else if (!quoted && IsBlank(c)) {
        break;
      } else {
        token.AppendChar(c);
      }
    }
    while (at < line.Length() && IsBlank(line[at])) ++at;
    if (!token.IsEmpty()) list->AddTail(token);
  }
}

void MainWindow::LoadQuoteChars() {
  ByteString path = ProgramFolder();
  EnsureTrailingSeparator(&path);
  path.Append("QuoteChars.txt");
  const std::unique_ptr<platform::File> file = platform::CreateFileA(
      SeamPath(path), platform::GENERIC_READ, platform::FILE_SHARE_READ, platform::OPEN_EXISTING);
  if (!file) return;
  struct {
    const char* key;
    char* field;
  } const kLines[] = {{"QuoteSub=", &quoteSub},
                      {"LeftArgQuote=", &leftArgQuote},
                      {"RightArgQuote=", &rightArgQuote}};
  ByteString line;
  while (line.ReadLine(file.get(), false)) {
    line.Trim(0, kLastBlank);
    ByteString value;
    for (const auto& known : kLines)
      if (TakeKey(line, known.key, &value) && !value.IsEmpty()) *known.field = value[0];
  }
}

void MainWindow::ParseCommandLine() {
  const ByteString quote('"');
  ByteString line = TextOf(platform::GetCommandLineA());
  line.ReplaceAll(ByteString(quoteSub), quote);
  LinkedList<ByteString> tokens;
  SplitCommandLine(line, &tokens);
  // The first one is the program itself.
  for (const auto* node = tokens.head ? tokens.head->next : nullptr; node; node = node->next) {
    const ByteString& token = *node->value;
    ByteString value;
    std::int32_t position = 0;
    if (TakeKey(token, "profile=", &value)) {
      extraProfiles.AddTail(value);
    } else if (TakeKey(token, "target=", &value)) {
      launchTarget = value;
    } else if (TakeKey(token, "args=", &value)) {
      value.ReplaceAll(ByteString(leftArgQuote), quote);
      value.ReplaceAll(ByteString(rightArgQuote), quote);
      launchArgs = value;
    } else if (TakeKey(token, "dir=", &value)) {
      launchDir = value;
    } else if (extraProfiles.count == 0 && !token.FindChar('=', &position)) {
      extraProfiles.AddTail(token);
    }
  }
  if (extraProfiles.count == 0) return;
  const ByteString name = *extraProfiles.head->value;
  extraProfiles.RemoveNode(extraProfiles.head);
  const std::int32_t row = platform::ComboFindString(window, kProfileList, Bytes(name));
  if (row == platform::kNoRow) {
    Box(ByteString("Profile \"")
            .Concat(name)
            .Concat("\" is not in the list of available profiles. Command line selection failed."),
        "Profile Selection Failure", platform::MB_ICONEXCLAMATION);
    return;
  }
  platform::ComboSetCurSel(window, kProfileList, row);
  commandLineProfileSelected = true;
}

}  // namespace kelvaro
