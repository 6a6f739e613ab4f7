// A small XML text as a tree, with the place of each element. It takes no document type, and so no
// entities but the five that XML has; depth and number of elements are bounded, the size is the
// caller's to bound.
#pragma once

#include <list>
#include <map>
#include <string>

#include "console/import/foreign_profile.h"

namespace kelvaro::console {

struct XmlElement {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::string text;  // its own, without the blanks at both ends
  Place place;
  std::list<XmlElement> children;

  // The first child of that name; null for none.
  const XmlElement* Child(const std::string& childName) const;
  // Its attribute "index" as a number; 0 without one, and for anything else.
  std::uint32_t Index() const;
};

// False, with *fault set, for a text that isn't well-formed or too large.
bool ReadXml(const std::string& bytes, XmlElement* root, ForeignFault* fault);

}  // namespace kelvaro::console
