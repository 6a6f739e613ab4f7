// Makes the tree of what a parser of XML tells, within the bounds that hold for all of them.
#pragma once

#include <string>
#include <vector>

#include "console/import/xml_tree.h"

namespace kelvaro::console {

class XmlBuilder {
 public:
  explicit XmlBuilder(XmlElement* root) : root(root) {}

  // False, with the fault noted, for an element too many or too deep.
  bool Begin(XmlElement element);
  void Text(const std::string& text);
  void End();
  // Notes what keeps the text from being read; the first one stands.
  void Stop(Place place, const std::string& what);

  // Its `what` is empty as long as all is well.
  const ForeignFault& Fault() const { return fault; }

 private:
  XmlElement* const root;
  std::vector<XmlElement*> open;
  std::size_t elements = 0;
  ForeignFault fault;
};

constexpr char kDocumentTypeFault[] = "a document type isn't taken";

}  // namespace kelvaro::console
