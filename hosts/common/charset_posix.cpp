#include <iconv.h>

#include <cerrno>

#include "hosts/common/charset.h"

namespace kivhost {
namespace {

const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);

class IconvCharset final : public Charset {
 public:
  IconvCharset(iconv_t toUtf8, iconv_t fromUtf8) : toUtf8(toUtf8), fromUtf8(fromUtf8) {}
  ~IconvCharset() override {
    iconv_close(toUtf8);
    iconv_close(fromUtf8);
  }

  std::optional<std::string> FromUtf8(std::string_view text) const override {
    std::string out;
    if (!Append(fromUtf8, text, out)) {
      return std::nullopt;
    }
    return out;
  }

 protected:
  bool Convert(std::string_view text, std::string& utf8) const override {
    bool isWhole = true;
    while (!Append(toUtf8, text, utf8)) {
      isWhole = false;
      utf8 += "\xEF\xBF\xBD";
      text.remove_prefix(1);
    }
    return isWhole;
  }

 private:
  // Appends what converts; false, with `text` at the byte, where something does not.
  static bool Append(iconv_t converter, std::string_view& text, std::string& out) {
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    while (!text.empty()) {
      char chunk[256];
      char* from = const_cast<char*>(text.data());
      size_t fromLeft = text.size();
      char* to = chunk;
      size_t toLeft = sizeof chunk;
      const size_t result = iconv(converter, &from, &fromLeft, &to, &toLeft);
      const int error = errno;
      out.append(chunk, sizeof chunk - toLeft);
      text.remove_prefix(text.size() - fromLeft);
      if (result == static_cast<size_t>(-1) && error != E2BIG) {
        return false;
      }
    }
    return true;
  }

  iconv_t toUtf8;
  iconv_t fromUtf8;
};

}  // namespace

std::unique_ptr<Charset> Charset::Open(const std::string& name) {
  // An empty name would be the locale's own.
  const iconv_t toUtf8 = name.empty() ? kNoConverter : iconv_open("UTF-8", name.c_str());
  if (toUtf8 == kNoConverter) {
    return nullptr;
  }
  const iconv_t fromUtf8 = iconv_open(name.c_str(), "UTF-8");
  if (fromUtf8 == kNoConverter) {
    iconv_close(toUtf8);
    return nullptr;
  }
  return std::make_unique<IconvCharset>(toUtf8, fromUtf8);
}

}  // namespace kivhost
