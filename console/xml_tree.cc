#include "console/xml_tree.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "app/platform/byte_text.h"

namespace kelvaro::console {
namespace {

// Far more than any profile has.
constexpr std::size_t kDeepest = 32;
constexpr std::size_t kMostElements = 200'000;

constexpr char kBlanks[] = " \t\r\n";

class TreeBuilder {
 public:
  explicit TreeBuilder(XmlElement* root) : parser(XML_ParserCreate(nullptr)), root(root) {
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(parser.get(), Start, End);
    XML_SetCharacterDataHandler(parser.get(), Text);
    XML_SetStartDoctypeDeclHandler(parser.get(), Doctype);
  }

  bool Parse(const std::string& bytes, ForeignFault* faultOut) {
    const XML_Status status =
        XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (status == XML_STATUS_OK) return true;
    if (fault.what.empty()) Stop(XML_ErrorString(XML_GetErrorCode(parser.get())));
    *faultOut = fault;
    return false;
  }

 private:
  static TreeBuilder& Self(void* self) { return *static_cast<TreeBuilder*>(self); }

  static void XMLCALL Start(void* self, const XML_Char* name, const XML_Char** attributes) {
    Self(self).Begin(name, attributes);
  }
  static void XMLCALL End(void* self, const XML_Char* /*name*/) {
    std::vector<XmlElement*>& open = Self(self).open;
    if (open.empty()) return;
    std::string& text = open.back()->text;
    text.erase(0, text.find_first_not_of(kBlanks));
    text.erase(text.find_last_not_of(kBlanks) + 1);
    open.pop_back();
  }
  static void XMLCALL Text(void* self, const XML_Char* text, int length) {
    std::vector<XmlElement*>& open = Self(self).open;
    if (!open.empty()) open.back()->text.append(text, static_cast<std::size_t>(length));
  }
  static void XMLCALL Doctype(void* self, const XML_Char* /*name*/, const XML_Char* /*system*/,
                              const XML_Char* /*publicId*/, int /*internal*/) {
    Self(self).Stop("a document type isn't taken");
  }

  Place Here() const {
    return {XML_GetCurrentLineNumber(parser.get()), XML_GetCurrentColumnNumber(parser.get()) + 1};
  }

  void Stop(const std::string& what) {
    fault = {Here(), what};
    XML_StopParser(parser.get(), XML_FALSE);
  }

  void Begin(const XML_Char* name, const XML_Char** attributes) {
    if (!fault.what.empty()) return;
    if (open.size() == kDeepest) return Stop("elements are nested too deeply");
    if (++elements > kMostElements) return Stop("too many elements");
    XmlElement* element = root;
    if (!open.empty()) element = &open.back()->children.emplace_back();
    element->name = name;
    element->place = Here();
    for (; *attributes; attributes += 2) element->attributes[attributes[0]] = attributes[1];
    open.push_back(element);
  }

  struct Free {
    void operator()(XML_Parser each) const { XML_ParserFree(each); }
  };
  const std::unique_ptr<XML_ParserStruct, Free> parser;
  XmlElement* const root;
  std::vector<XmlElement*> open;
  std::size_t elements = 0;
  ForeignFault fault;
};

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

bool ReadXml(const std::string& bytes, XmlElement* root, ForeignFault* fault) {
  return TreeBuilder(root).Parse(bytes, fault);
}

}  // namespace kelvaro::console
