#include "console/import/xml_tree.h"

#include <expat.h>

#include <memory>
#include <utility>

#include "console/import/xml_builder.h"

namespace kelvaro::console {
namespace {

class Parser {
 public:
  explicit Parser(XmlElement* root) : parser(XML_ParserCreate(nullptr)), builder(root) {
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(parser.get(), Start, End);
    XML_SetCharacterDataHandler(parser.get(), Text);
    XML_SetStartDoctypeDeclHandler(parser.get(), Doctype);
  }

  bool Parse(const std::string& bytes, ForeignFault* fault) {
    const XML_Status status =
        XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (status == XML_STATUS_OK) return true;
    builder.Stop(Here(), XML_ErrorString(XML_GetErrorCode(parser.get())));
    *fault = builder.Fault();
    return false;
  }

 private:
  static Parser& Self(void* self) { return *static_cast<Parser*>(self); }

  static void XMLCALL Start(void* self, const XML_Char* name, const XML_Char** attributes) {
    Self(self).Begin(name, attributes);
  }
  static void XMLCALL End(void* self, const XML_Char* /*name*/) { Self(self).builder.End(); }
  static void XMLCALL Text(void* self, const XML_Char* text, int length) {
    Self(self).builder.Text({text, static_cast<std::size_t>(length)});
  }
  static void XMLCALL Doctype(void* self, const XML_Char* /*name*/, const XML_Char* /*system*/,
                              const XML_Char* /*publicId*/, int /*internal*/) {
    Self(self).builder.Stop(Self(self).Here(), kDocumentTypeFault);
    XML_StopParser(Self(self).parser.get(), XML_FALSE);
  }

  Place Here() const {
    return {XML_GetCurrentLineNumber(parser.get()), XML_GetCurrentColumnNumber(parser.get()) + 1};
  }

  void Begin(const XML_Char* name, const XML_Char** attributes) {
    XmlElement element;
    element.name = name;
    element.place = Here();
    for (; *attributes; attributes += 2) element.attributes[attributes[0]] = attributes[1];
    if (!builder.Begin(std::move(element))) XML_StopParser(parser.get(), XML_FALSE);
  }

  struct Free {
    void operator()(XML_Parser each) const { XML_ParserFree(each); }
  };
  const std::unique_ptr<XML_ParserStruct, Free> parser;
  XmlBuilder builder;
};

}  // namespace

bool ReadXml(const std::string& bytes, XmlElement* root, ForeignFault* fault) {
  return Parser(root).Parse(bytes, fault);
}

}  // namespace kelvaro::console
