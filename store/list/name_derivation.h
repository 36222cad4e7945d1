// From people's names to folder names of at most eight characters.
#pragma once

#include <functional>

#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"

namespace kivstore {

inline constexpr int kNameWidth = 8;

// The name for first + last that is free in the spec's folder, without extension: letters and
// digits only, then fewer vowels, then cut to the width, then varied at the end until it is free.
// `exists` says that the folder found already belongs to this very name; with an extension, only
// that the first try was taken. When all variants are taken the last one is returned. The spec ends
// on the folder.
SString DeriveName(SFileSpec& spec, const SString& first, const SString& last, const char* fallback,
                   int width, bool& exists, const SString& extension);
SString DeriveFolderName(SFileSpec& spec, const SString& first, const SString& last, bool& exists);
// The same for who knows the names in the folder: `isTaken` tells of a name whether it is there,
// `isOwn`, asked of one that is, whether it belongs to this very name and will do.
using AskName = std::function<bool(const SString& name)>;
SString DeriveFolderName(const SString& first, const SString& last, const AskName& isTaken,
                         const AskName& isOwn);
// Whether the folder's longname.kiv has this name.
bool BelongsTo(SFileSpec folder, const SString& first, const SString& last);
SString DeriveFileName(SFileSpec& spec, const SString& name, bool& exists,
                       const SString& extension);

// Puts the next digit at `position`; true when it moves on to the position before. A position
// outside the text leaves the text as it is for that try.
bool NextVariant(SString& text, int& position, int& digit);

}  // namespace kivstore
