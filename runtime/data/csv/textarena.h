// Memory for texts that live as long as a block of cells.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace runtime::data {

class TextArena {
 public:
  /// Room for `bytes` bytes, valid until Release.
  char* Allocate(std::size_t bytes);
  /// Gives the last `bytes` bytes of the last allocation back.
  void GiveBack(std::size_t bytes) { fUsed -= bytes; }
  void Release();

 private:
  struct Chunk {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
  };

  std::vector<Chunk> fChunks;
  std::size_t fUsed = 0;  // of the last chunk
};

}  // namespace runtime::data
