#include "foundation/files/path_steps.h"

#include <algorithm>
#include <string_view>

namespace kivstore {
namespace {

constexpr size_t kNone = std::string_view::npos;

// The path as far as it is kept, at the front of the bytes that are still read.
class KeptSteps {
 public:
  KeptSteps(char* path, size_t separators)
      : path(path), root(std::min<size_t>(separators, 2)), end(root), floor(root) {
    fixedSteps = root == 1 ? 0 : root == 2 ? 2 : 1;
  }

  void Take(std::string_view step) {
    if (fixedSteps > 0) {
      --fixedSteps;
      Append(step);
      floor = end;
    } else if (step == "..") {
      StepBack(step);
    } else if (step != ".") {
      Append(step);
    }
  }

  // A pair alone is a root.
  size_t Length() const { return end == 2 && root == 2 ? 1 : end; }

 private:
  void Append(std::string_view step) {
    if (end > root) {
      path[end++] = '\\';
    }
    end = static_cast<size_t>(std::copy(step.begin(), step.end(), path + end) - path);
  }

  void StepBack(std::string_view step) {
    if (end == floor) {
      Append(step);
      floor = end;
      return;
    }
    const size_t separator = std::string_view(path, end).rfind('\\');
    end = separator == kNone ? root : std::max(separator, root);
  }

  char* path;
  size_t root;
  size_t end;
  size_t floor;  // no step before it is left
  int fixedSteps;
};

}  // namespace

size_t NormalizePath(char* path, size_t length) {
  const std::string_view whole(path, length);
  size_t at = std::min(whole.find_first_not_of('\\'), length);
  KeptSteps kept(path, at);
  while (at < length) {
    const size_t next = std::min(whole.find('\\', at), length);
    const std::string_view step = whole.substr(at, next - at);
    at = next + 1;
    if (!step.empty()) {
      kept.Take(step);
    }
  }
  return kept.Length();
}

}  // namespace kivstore
