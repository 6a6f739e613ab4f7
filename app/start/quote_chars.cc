#include "app/start/quote_chars.h"

#include <cstdint>
#include <cstring>
#include <memory>

#include "app/platform/files.h"
#include "foundation/paths.h"
#include "storage/data_folder.h"

namespace kelvaro {
namespace {

std::unique_ptr<platform::File> OpenIn(const ByteString& folder) {
  ByteString path = folder;
  EnsureTrailingSeparator(&path);
  path.Append("QuoteChars.txt");
  return platform::files().CreateFileA(Bytes(path), platform::GENERIC_READ,
                                       platform::FILE_SHARE_READ, platform::OPEN_EXISTING);
}

}  // namespace

bool TakeKey(const ByteString& text, const char* key, ByteString* rest) {
  const auto length = static_cast<std::int32_t>(std::strlen(key));
  if (text.Left(length).Compare(ByteString(key), true) != 0) return false;
  *rest = text.Right(static_cast<std::int32_t>(text.Length()) - length);
  return true;
}

QuoteChars LoadQuoteChars() {
  QuoteChars chars;
  const ByteString data = DataFolder();
  const ByteString program = ProgramFolder();
  std::unique_ptr<platform::File> file = OpenIn(data);
  if (!file && !data.Equals(program)) file = OpenIn(program);
  if (!file) return chars;
  struct {
    const char* key;
    char* field;
  } const kLines[] = {{"QuoteSub=", &chars.quoteSub},
                      {"LeftArgQuote=", &chars.leftArgQuote},
                      {"RightArgQuote=", &chars.rightArgQuote}};
  ByteString line;
  while (line.ReadLine(file.get(), false)) {
    line.Trim(0, 32);
    ByteString value;
    for (const auto& known : kLines)
      if (TakeKey(line, known.key, &value) && !value.IsEmpty()) *known.field = value[0];
  }
  return chars;
}

}  // namespace kelvaro
