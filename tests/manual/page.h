// A page of the manual, and what stands in it. The pages are HTML as their authors write it: names
// of elements in small letters, attributes in double quotes, no scripts.
#pragma once

#include <string>
#include <vector>

namespace kelvaro::manual {

struct Page {
  std::string name;  // of the file
  std::string html;
};

// The pages of a folder, sorted by name.
std::vector<Page> Pages(const std::string& folder);
// The page of docs/manual of that name; without text, and a failure of the test, for none.
Page PageNamed(const std::string& name);

// What stands between `start` and the next `end`, each time.
std::vector<std::string> Between(const std::string& text, const std::string& start,
                                 const std::string& end);
// The insides of all elements <ELEMENT class="NAME">.
std::vector<std::string> OfClass(const Page& page, const std::string& element,
                                 const std::string& name);
// The values of that attribute, wherever it stands in a tag ELEMENT.
std::vector<std::string> Attributes(const Page& page, const std::string& element,
                                    const std::string& attribute);
// The cells of each row of a table's inside, but for rows of headings; as HTML.
std::vector<std::vector<std::string>> Rows(const std::string& table);

// Without its tags, and with characters for entities.
std::string PlainText(const std::string& html);
// The same, with any run of blanks and line ends as one blank.
std::string OneLine(const std::string& html);
// "a%20b" as "a b".
std::string DecodedAddress(const std::string& address);

std::vector<std::string> Lines(const std::string& text);
// Without blanks at both ends.
std::string Trimmed(const std::string& text);

}  // namespace kelvaro::manual
