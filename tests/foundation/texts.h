// Lists of texts, to be compared as a whole.
#pragma once

#include <string>
#include <vector>

#include "foundation/byte_string.h"
#include "foundation/linked_list.h"

namespace kelvaro {

inline std::vector<std::string> Texts(const LinkedList<ByteString>& list) {
  std::vector<std::string> texts;
  for (const ByteString& text : list) texts.push_back(Bytes(text));
  return texts;
}

}  // namespace kelvaro
