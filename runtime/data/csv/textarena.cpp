#include "runtime/data/csv/textarena.h"

#include <algorithm>

namespace runtime::data {

namespace {
constexpr std::size_t kChunkBytes = std::size_t{64} * 1024;
}

char* TextArena::Allocate(std::size_t bytes) {
  if (fChunks.empty() || fChunks.back().size - fUsed < bytes) {
    const std::size_t size = std::max(bytes, kChunkBytes);
    fChunks.push_back({std::make_unique_for_overwrite<char[]>(size), size});
    fUsed = 0;
  }
  char* const at = fChunks.back().bytes.get() + fUsed;
  fUsed += bytes;
  return at;
}

void TextArena::Release() {
  // One chunk of the common size is kept for the next block.
  if (fChunks.size() > 1 || (!fChunks.empty() && fChunks.front().size > kChunkBytes)) fChunks.clear();
  fUsed = 0;
}

}  // namespace runtime::data
