// By XmlLite, the system's own reader, bound by name.
#include "console/import/xml_tree.h"

#include <cstdio>
#include <utility>

#include "app/platform/windows/wide_text.h"
#include "console/import/xml_builder.h"

// Last.
#include "app/platform/windows/owned_interface.h"

#include <shlwapi.h>
#include <xmllite.h>

namespace kelvaro::console {
namespace {

using platform::Owned;

Owned<IXmlReader> MakeReader() {
  using Create = ::HRESULT(WINAPI*)(REFIID kind, void** made, IMalloc* memory);
  // Stays to the end of the program.
  static const HMODULE library = LoadLibraryA("xmllite.dll");
  const auto create = library ? platform::FunctionOf<Create>(library, "CreateXmlReader") : nullptr;
  void* made = nullptr;
  if (!create || create(__uuidof(IXmlReader), &made, nullptr) != S_OK) return nullptr;
  return Owned<IXmlReader>(static_cast<IXmlReader*>(made));
}

// As the other system's parser has it.
constexpr char kNoElement[] = "no element found";
constexpr char kDuplicateAttribute[] = "duplicate attribute";

std::string WordsFor(::HRESULT fault) {
  switch (static_cast<XmlError>(fault)) {
    case MX_E_INPUTEND:
    case WC_E_ROOTELEMENT:
      return kNoElement;
    case WC_E_ELEMENTMATCH:
      return "mismatched tag";
    case WC_E_UNIQUEATTRIBUTE:
      return kDuplicateAttribute;
    case WC_E_DTDPROHIBITED:
      return kDocumentTypeFault;
    default:
      char text[64];
      std::snprintf(text, sizeof text, "not well-formed (0x%08lX)",
                    static_cast<unsigned long>(fault));
      return text;
  }
}

class Parser {
 public:
  Parser(IXmlReader& reader, XmlElement* root) : reader(reader), builder(root) {}

  bool Parse(ForeignFault* fault) {
    XmlNodeType kind = XmlNodeType_None;
    ::HRESULT result = S_OK;
    while (builder.Fault().what.empty() && (result = reader.Read(&kind)) == S_OK) Take(kind);
    if (FAILED(result)) builder.Stop(Here(), WordsFor(result));
    if (last.line == 0) builder.Stop({}, kNoElement);
    *fault = builder.Fault();
    return fault->what.empty();
  }

 private:
  void Take(XmlNodeType kind) {
    if (kind == XmlNodeType_Element) {
      Begin();
    } else if (kind == XmlNodeType_EndElement) {
      builder.End();
    } else if (kind == XmlNodeType_Text || kind == XmlNodeType_CDATA ||
               kind == XmlNodeType_Whitespace) {
      builder.Text(Value());
    }
  }

  void Begin() {
    XmlElement element;
    element.place = Here();
    if (element.place.column > 1) --element.place.column;  // its "<" is before its name
    // At the end of a text that is cut off, Wine tells of the last element again and again.
    if (element.place == last) return builder.Stop(last, kNoElement);
    last = element.place;
    element.name = Name();
    const bool isEmpty = reader.IsEmptyElement();
    for (::HRESULT more = reader.MoveToFirstAttribute(); more == S_OK;
         more = reader.MoveToNextAttribute()) {
      const auto [attribute, isNew] = element.attributes.try_emplace(Name(), Value());
      if (!isNew) builder.Stop(Here(), kDuplicateAttribute);  // Wine doesn't mind
    }
    if (builder.Begin(std::move(element)) && isEmpty) builder.End();
  }

  Place Here() const {
    UINT line = 0;
    UINT column = 0;
    reader.GetLineNumber(&line);
    reader.GetLinePosition(&column);
    return {line > 0 ? line : 1, column > 0 ? column : 1};
  }
  std::string Name() const {
    const wchar_t* text = nullptr;
    UINT length = 0;
    return reader.GetQualifiedName(&text, &length) == S_OK ? platform::Utf8Of({text, length}) : "";
  }
  std::string Value() const {
    const wchar_t* text = nullptr;
    UINT length = 0;
    return reader.GetValue(&text, &length) == S_OK ? platform::Utf8Of({text, length}) : "";
  }

  IXmlReader& reader;
  XmlBuilder builder;
  Place last{0, 0};  // where an element began
};

}  // namespace

bool ReadXml(const std::string& bytes, XmlElement* root, ForeignFault* fault) {
  const Owned<IXmlReader> reader = MakeReader();
  const Owned<IStream> stream(SHCreateMemStream(reinterpret_cast<const BYTE*>(bytes.data()),
                                                static_cast<UINT>(bytes.size())));
  if (!reader || !stream || FAILED(reader->SetInput(stream.get())) ||
      FAILED(reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit))) {
    *fault = {{}, "this system has no XmlLite to read it with"};
    return false;
  }
  return Parser(*reader, root).Parse(fault);
}

}  // namespace kelvaro::console
