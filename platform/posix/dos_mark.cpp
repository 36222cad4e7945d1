#define _FILE_OFFSET_BITS 64
#include "platform/posix/dos_mark.h"

#include <fcntl.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/posix/data_root.h"
#include "platform/posix/folder_reader.h"

namespace kivstore {
namespace {

// Of a share its client tells the attributes themselves, 32 bits in this machine's order.
constexpr char kShareAttributes[] = "user.cifs.dosattrib";

bool IsOnShare() {
  return KeptDataRoot().IsWindowsShare();
}

unsigned ShareBits(uint32_t bits, ssize_t length) {
  return length == sizeof bits ? bits & (kDosReadOnly | kDosHidden) : 0;
}

int ChangeOnShare(int file, unsigned bit, bool set) {
  uint32_t bits = 0;
  if (fgetxattr(file, kShareAttributes, &bits, sizeof bits) != sizeof bits) {
    return ENODATA;
  }
  bits = set ? bits | bit : bits & ~bit;
  return fsetxattr(file, kShareAttributes, &bits, sizeof bits, 0) == 0 ? 0 : errno;
}

unsigned BitsOf(const char* mark, ssize_t length) {
  return length > 0 ? DosBits({mark, static_cast<size_t>(length)}) : 0;
}

int WriteMark(int file, const char* mark, size_t length) {
  return fsetxattr(file, kDosAttributeName, mark, length, 0) == 0 ? 0 : errno;
}

bool FolderOfBearsMark(std::string_view place) {
  const std::string folder(place.substr(0, place.find_last_of('/') + 1));
  return getxattr(folder.empty() ? "." : folder.c_str(), kDosAttributeName, nullptr, 0) >= 0;
}

// As far as it can.
void MarkTree(int base, const char* name, int depth) {
  constexpr int kMaxDepth = 256;
  FolderReader reader;
  if (depth > kMaxDepth || reader.Open(name, base, O_NOFOLLOW) != 0 ||
      BearsMark(reader.GetDescriptor()) || MarkFolder(reader.GetDescriptor()) != 0) {
    return;
  }
  for (RawEntry entry; reader.Next(entry);) {
    if (entry.type == DT_DIR && !entry.IsDots()) {
      MarkTree(reader.GetDescriptor(), entry.name, depth + 1);
    }
  }
}

}  // namespace

bool BearsMark(int folder) {
  return IsOnShare() || fgetxattr(folder, kDosAttributeName, nullptr, 0) >= 0;
}

unsigned MarkOf(int file) {
  if (IsOnShare()) {
    uint32_t bits = 0;
    return ShareBits(bits, fgetxattr(file, kShareAttributes, &bits, sizeof bits));
  }
  char mark[kMaxDosAttribute];
  return BitsOf(mark, fgetxattr(file, kDosAttributeName, mark, sizeof mark));
}

unsigned MarkOf(const char* path) {
  unsigned bits;
  ReadMark(path, bits);
  return bits;
}

int ReadMark(const char* path, unsigned& bits) {
  if (IsOnShare()) {
    uint32_t told = 0;
    const ssize_t length = getxattr(path, kShareAttributes, &told, sizeof told);
    bits = ShareBits(told, length);
    return length < 0 ? errno : 0;
  }
  char mark[kMaxDosAttribute];
  const ssize_t length = getxattr(path, kDosAttributeName, mark, sizeof mark);
  bits = BitsOf(mark, length);
  return length < 0 ? errno : 0;
}

int ChangeMark(int file, unsigned bit, bool set) {
  if (IsOnShare()) {
    return ChangeOnShare(file, bit, set);
  }
  char mark[kMaxDosAttribute];
  const ssize_t length = fgetxattr(file, kDosAttributeName, mark, sizeof mark);
  const bool isStated = length > 0 && ChangeDosBit(mark, static_cast<int>(length), bit, set);
  return isStated ? WriteMark(file, mark, static_cast<size_t>(length)) : ENODATA;
}

int MakeMark(int file, unsigned bit) {
  const char mark[] = {'0', 'x', static_cast<char>('0' + bit), '\0'};
  return WriteMark(file, mark, sizeof mark);
}

int MarkFolder(int folder) {
  constexpr char kPlainFolder[] = "0x10";
  return BearsMark(folder) ? 0 : WriteMark(folder, kPlainFolder, sizeof kPlainFolder);
}

void InheritMark(const char* place, int base, const char* name) {
  if (!IsOnShare() && FolderOfBearsMark(place)) {
    MarkTree(base, name, 0);
  }
}

}  // namespace kivstore
