#include "hosts/kivadmin/session/action_log.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "foundation/files/file.h"
#include "hosts/common/failure_text.h"
#include "hosts/common/store_text.h"
#include "hosts/kivadmin/session/who_and_when.h"
#include "store/lock/lock_file.h"

namespace kivadmin {
namespace {

using namespace kivstore;
using Json = nlohmann::ordered_json;

SFileSpec LogFile(const SFileSpec& root) {
  SFileSpec log(root);
  log.Down(kActionLog);
  return log;
}

std::string LineOf(const std::string& what) {
  const Json line = {
      {"when", NowText()}, {"who", UserName()}, {"version", KIVSTORE_VERSION}, {"what", what}};
  return line.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

// Whether the file's last line lacks its end.
bool IsCutShort(SFile& file) {
  char last = '\n';
  return file.Size() > 0 && file.Seek(1, -1) && file.Read(1, &last) == 1 && last != '\n';
}

bool AppendLine(SFile& file, const std::string& line) {
  const int32_t end = file.Size();
  const std::string text = (IsCutShort(file) ? "\n" : "") + line;
  const auto count = static_cast<int32_t>(text.size());
  if (file.Seek(0, end) && file.Write(count, text.data()) == count) {
    return true;
  }
  const SFileFailure why = LastFileFailure();
  file.SetSize(end);
  NoteFileFailure(why.path, why.error);
  return false;
}

kivhost::HostError LastReason() {
  return {kivhost::kNoStore, kivhost::ReasonText(FailureOfLastFile(ListKind::kFiles))};
}

std::string Field(const Json& line, const char* key) {
  const auto found = line.find(key);
  return found != line.end() && found->is_string() ? found->get<std::string>() : "";
}

bool TakeLine(std::string_view text, const TakeAction& take) {
  const Json line = Json::parse(text, nullptr, false);
  if (!line.is_object()) {
    return false;
  }
  take({Field(line, "when"), Field(line, "who"), Field(line, "version"), Field(line, "what")});
  return true;
}

// Takes the whole lines out of what was read so far; with `isEnd` also what stands behind them.
size_t TakeLines(std::string& text, bool isEnd, const TakeAction& take) {
  constexpr size_t kLongestLine = 1 << 20;
  size_t unreadable = 0;
  size_t begin = 0;
  for (size_t end; (end = text.find('\n', begin)) != text.npos; begin = end + 1) {
    unreadable += TakeLine(std::string_view(text).substr(begin, end - begin), take) ? 0 : 1;
  }
  text.erase(0, begin);
  if (!text.empty() && (isEnd || text.size() > kLongestLine)) {
    unreadable += TakeLine(text, take) ? 0 : 1;
    text.clear();
  }
  return unreadable;
}

}  // namespace

std::string AppendAction(SSite& site, const SFileSpec& root, const std::string& what) {
  SLockFile lock(site, root, kActionLog);
  lock.list = ListKind::kFiles;
  site.ClearFailure();
  if (!lock.Lock()) {
    return kivhost::ReasonText(site.GetFailure());
  }
  SFileSpec log = LogFile(root);
  SFile file;
  const bool isOpen = (log.Exists() || log.CreateFile(0, 0, 0)) && file.OpenPatiently(log);
  return isOpen && AppendLine(file, LineOf(what))
             ? ""
             : kivhost::ReasonText(FailureOfLastFile(ListKind::kFiles));
}

size_t ReadActions(const SFileSpec& root, const TakeAction& take) {
  const SFileSpec log = LogFile(root);
  if (!log.Exists()) {
    return 0;
  }
  SFile file;
  if (!kivhost::OpenToRead(file, log)) {
    throw LastReason();
  }
  const uint32_t known = LastFileFailure().number;
  size_t unreadable = 0;
  std::string text;
  char block[1 << 16];
  for (int32_t count; (count = file.Read(sizeof block, block)) > 0;) {
    text.append(block, static_cast<size_t>(count));
    unreadable += TakeLines(text, false, take);
  }
  if (LastFileFailure().number != known) {
    throw LastReason();
  }
  return unreadable + TakeLines(text, true, take);
}

}  // namespace kivadmin
