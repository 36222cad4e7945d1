#include "hosts/kivadmin/options/options_text.h"

#include <algorithm>
#include <utility>

#include "archive/pref_scanner.h"
#include "hosts/common/host_error.h"
#include "hosts/kivadmin/options/options_text_archive.h"
#include "platform/base/bytes.h"

namespace kivadmin {
namespace {

using kivhost::HostError;
using kivhost::kWrongUsage;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string Folded(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return static_cast<char>(kivstore::FoldUpper(static_cast<unsigned char>(c)));
  });
  return text;
}

std::string PlaceOf(const std::string& section, const std::string& key) {
  return Folded(section + '\n' + key);
}

bool HoldsOptions(const std::string& section) {
  const std::string folded = Folded(section);
  const std::string options = Folded(kOptionsSection);
  return folded == options || folded.starts_with(options + '_');
}

// Counts the lines of a text that is walked from its start.
class LineCounter {
 public:
  explicit LineCounter(const char* start) : at(start) {}

  size_t NumberAt(const char* place) {
    for (; at < place; ++at) {
      number += *at == '\n' || (*at == '\r' && at[1] != '\n');
    }
    return number;
  }

 private:
  const char* at;
  size_t number = 1;
};

}  // namespace

OptionsText::OptionsText(const std::string& name, std::string bytes) : name(name) {
  if (bytes.find('\0') != std::string::npos) {
    throw HostError(kWrongUsage, name + ": is no text file of options");
  }
  char* const start =
      bytes.data() + (bytes.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
  LineCounter counter(start);
  kivstore::SPrefScanner scanner{start, bytes.data() + bytes.size()};
  for (scanner.SkipBlanks(); scanner.cursor < scanner.end; scanner.SkipLine()) {
    const std::string_view line(scanner.cursor, scanner.LineEnd());
    const size_t number = counter.NumberAt(scanner.cursor);
    line.starts_with('[') ? OpenSection(line, number) : AddLine(line, number);
  }
  if (!sections.contains(Folded(kOptionsSection))) {
    throw HostError(kWrongUsage, name + ": has no section [" + kOptionsSection +
                                     "]; kivadmin options export writes a file that has");
  }
  ThrowIfRefused();
}

void OptionsText::OpenSection(std::string_view header, size_t number) {
  const size_t end = header.find(']');
  const Line line{std::string(header), "", {}, {}, number};
  section = header.substr(1, end == std::string_view::npos ? end : end - 1);
  if (!HoldsOptions(section)) {
    section.clear();
  } else if (end == std::string_view::npos) {
    Refuse(line, "a section's name ends in ]");
  } else if (!sections.insert(Folded(section)).second) {
    Refuse(line, "the section stands there twice");
  }
}

void OptionsText::AddLine(std::string_view text, size_t number) {
  const size_t equals = text.find('=');
  if (section.empty() || equals == std::string_view::npos || text[0] == ';' || text[0] == '#') {
    return;
  }
  const std::string key(text.substr(0, equals));
  const Line line{section, key, std::string(text.substr(equals + 1)), {}, number};
  const auto [there, isNew] = lines.emplace(PlaceOf(section, key), line);
  if (!isNew) {
    Refuse(line, "stands there twice, first in line " + std::to_string(there->second.number));
  }
}

void OptionsText::ReadOver(kivstore::STeacherOptionsDob& level,
                           kivstore::STeacherOptionsDob& options) {
  for (const bool reading : {false, true}) {
    OptionsTextArchive archive(*this, reading);
    archive.PushSection(kOptionsSection);
    (reading ? options : level).Serialize(archive);
    archive.PopSection();
  }
  RefuseUnknown();
  ThrowIfRefused();
  // Reading leaves a per-game record of defaults where the text says that there is none.
  if (Ask(kOptionsSection, "TOGameDob_Exists").Value() == "0") {
    delete std::exchange(options.gameOptions, nullptr);
  }
}

OptionsText::Line& OptionsText::Ask(const std::string& inSection, const std::string& key) {
  Line& line = lines[PlaceOf(inSection, key)];
  if (!line.isAsked) {
    line.section = inSection;
    line.key = key;
    line.isAsked = true;
  }
  return line;
}

bool OptionsText::GivesValue(const std::string& inSection, const std::string& key) const {
  const std::string place = PlaceOf(inSection, key);
  const std::string elements = place + '_';
  const std::string stamp = Folded(elements + "ts_");
  for (auto at = lines.lower_bound(place); at != lines.end() && at->first.starts_with(place);
       ++at) {
    const bool isValue =
        at->first == place || (at->first.starts_with(elements) && !at->first.starts_with(stamp));
    if (isValue && at->second.given) {
      return true;
    }
  }
  return false;
}

void OptionsText::Refuse(const Line& line, const std::string& why) {
  if (IsRefused()) {
    return;
  }
  refusal = name + ':' + (line.number > 0 ? std::to_string(line.number) + ':' : "") + ' ' +
            (line.key.empty() && !line.given ? line.section : line.key) +
            (line.given ? '=' + *line.given : "") + ": " + why;
}

void OptionsText::RefuseUnknown() {
  const Line* first = nullptr;
  for (const auto& [place, line] : lines) {
    if (!line.isAsked && (first == nullptr || line.number < first->number)) {
      first = &line;
    }
  }
  if (first != nullptr) {
    const bool isSpaced = first->key.ends_with(' ') || first->key.ends_with('\t');
    Refuse(*first, isSpaced ? "no blank may stand before ="
                            : "there is no such option in [" + first->section + "]");
  }
}

void OptionsText::ThrowIfRefused() const {
  if (IsRefused()) {
    throw HostError(kWrongUsage, refusal);
  }
}

}  // namespace kivadmin
