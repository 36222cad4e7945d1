#include "foundation/text/text_block.h"

#include <cstdlib>

namespace kivstore {
namespace {

constexpr size_t kPieceSize = 4096;

}  // namespace

// Pieces are used again and never given back: a host lists the same store over and over.
constinit STextBlock::Piece* STextBlock::gFreePieces = nullptr;

bool STextBlock::TakePiece() {
  Piece* taken = gFreePieces;
  if (taken != nullptr) {
    gFreePieces = taken->next;
  } else {
    taken = static_cast<Piece*>(std::malloc(kPieceSize));
  }
  if (taken == nullptr) {
    return false;
  }
  LetGo();
  *taken = {nullptr, 1};
  piece = taken;
  at = reinterpret_cast<char*>(taken + 1);
  room = kPieceSize - sizeof(Piece);
  return true;
}

void STextBlock::LetGo() {
  if (piece != nullptr) {
    Drop(piece);
  }
}

void STextBlock::Drop(Piece* piece) noexcept {
  if (--piece->users > 0) {
    return;
  }
#ifdef KIVSTORE_PLAIN_BLOCKS
  std::free(piece);
#else
  piece->next = gFreePieces;
  gFreePieces = piece;
#endif
}

void SString::FreeJoint(BlockHeader* header) noexcept {
  STextBlock::Drop(reinterpret_cast<STextBlock::TextHeader*>(
                       reinterpret_cast<char*>(header) - offsetof(STextBlock::TextHeader, header))
                       ->piece);
}

}  // namespace kivstore
