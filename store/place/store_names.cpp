#include "store/place/store_names.h"

#include "foundation/files/file_type.h"

namespace kivstore {

// A game type that is registered later must show, so that what was formed holds for its extension.
SString ClassesName(TextNumber stem) {
  struct FormedName {
    SString extension;
    SString name;
  };
  static FormedName formedNames[2];
  const bool ofTeachers = stem == kTextTeacherClasses;
  FormedName& formed = formedNames[ofTeachers ? 1 : 0];
  const SString& extension = FindFileType(kFileTypeGame).GetExtension();
  if (formed.name.IsEmpty() || formed.extension != extension) {
    formed.extension = extension;
    formed.name = ofTeachers ? CachedText<kTextTeacherClasses>() : CachedText<kTextClasses>();
    if (!extension.IsEmpty()) {
      formed.name += '.';
      formed.name += extension;
    }
  }
  return formed.name;
}

bool IsSafeName(const SString& name) {
  bool speaks = false;  // something but dots and blanks
  for (const char c : name.View()) {
    if (c == '\\' || c == '/') {
      return false;
    }
    speaks = speaks || (c != '.' && c != ' ');
  }
  return speaks;
}

}  // namespace kivstore
