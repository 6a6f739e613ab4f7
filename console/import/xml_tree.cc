#include "console/import/xml_tree.h"

#include <algorithm>
#include <utility>

#include "app/platform/byte_text.h"
#include "console/import/xml_builder.h"

namespace kelvaro::console {
namespace {

// Far more than any profile has.
constexpr std::size_t kDeepest = 32;
constexpr std::size_t kMostElements = 200'000;

constexpr char kBlanks[] = " \t\r\n";

}  // namespace

const XmlElement* XmlElement::Child(const std::string& childName) const {
  const auto child =
      std::find_if(children.begin(), children.end(),
                   [&childName](const XmlElement& each) { return each.name == childName; });
  return child == children.end() ? nullptr : &*child;
}

std::uint32_t XmlElement::Index() const {
  const auto index = attributes.find("index");
  if (index == attributes.end()) return 0;
  const auto number = platform::ParseWholeNumber(index->second);
  return number && *number <= UINT32_MAX ? static_cast<std::uint32_t>(*number) : 0;
}

bool XmlBuilder::Begin(XmlElement element) {
  if (open.size() == kDeepest) Stop(element.place, "elements are nested too deeply");
  if (++elements > kMostElements) Stop(element.place, "too many elements");
  if (!fault.what.empty()) return false;
  XmlElement* added = root;
  if (!open.empty()) added = &open.back()->children.emplace_back();
  *added = std::move(element);
  open.push_back(added);
  return true;
}

void XmlBuilder::Text(const std::string& text) {
  if (!open.empty()) open.back()->text += text;
}

void XmlBuilder::End() {
  if (open.empty()) return;
  std::string& text = open.back()->text;
  text.erase(0, text.find_first_not_of(kBlanks));
  text.erase(text.find_last_not_of(kBlanks) + 1);
  open.pop_back();
}

void XmlBuilder::Stop(Place place, const std::string& what) {
  if (fault.what.empty()) fault = {place, what};
}

}  // namespace kelvaro::console
