// The project's own source files, for tests that read them.
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kivtest {

// Text by path from the project's root, of the .h and .cpp files in these folders.
inline std::map<std::string, std::string> ReadSources(const std::vector<std::string>& folders) {
  namespace fs = std::filesystem;
  const fs::path root = KIVSTORE_SOURCE_DIR;
  std::map<std::string, std::string> texts;
  for (const std::string& folder : folders) {
    if (!fs::exists(root / folder)) {
      continue;
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / folder)) {
      const std::string ending = entry.path().extension().string();
      if (ending == ".h" || ending == ".cpp") {
        std::ifstream in(entry.path(), std::ios::binary);
        texts[fs::relative(entry.path(), root).generic_string()] = {
            std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
      }
    }
  }
  return texts;
}

// What stands between two marks, everywhere in the text.
inline std::vector<std::string> FindBetween(const std::string& text, const std::string& before,
                                            char after) {
  std::vector<std::string> found;
  for (size_t at = text.find(before); at != std::string::npos; at = text.find(before, at)) {
    at += before.size();
    found.push_back(text.substr(at, text.find(after, at) - at));
  }
  return found;
}

inline bool IsPartOfWord(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// The words of the code outside line comments; one that is followed by a bracket ends in it.
inline std::set<std::string> WordsOf(const std::string& text) {
  std::set<std::string> words;
  for (size_t i = 0; i < text.size();) {
    if (text.compare(i, 2, "//") == 0) {
      i = std::min(text.find('\n', i), text.size());
    } else if (IsPartOfWord(text[i])) {
      size_t end = i;
      while (end < text.size() && IsPartOfWord(text[end])) {
        ++end;
      }
      words.insert(text.substr(i, end - i) + (text.compare(end, 1, "(") == 0 ? "(" : ""));
      i = end;
    } else {
      ++i;
    }
  }
  return words;
}

inline bool IsUnder(const std::string& path, const std::string& folder) {
  return path.compare(0, folder.size() + 1, folder + "/") == 0;
}

}  // namespace kivtest
