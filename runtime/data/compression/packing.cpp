#include "runtime/data/compression/packing.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>
#include <zlib.h>
#include <zstd.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"

namespace runtime::data {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kGzipMark = "\x1f\x8b"sv;
constexpr std::string_view kZstandardMark = "\x28\xb5\x2f\xfd"sv;

bool BeginsWith(std::string_view bytes, std::string_view mark) { return bytes.substr(0, mark.size()) == mark; }

class GzipUnpacker : public Unpacker {
 public:
  GzipUnpacker(std::string_view packed, std::string name) : Unpacker(packed, std::move(name)) {
    constexpr int kGzipOnly = 16;
    if (inflateInit2(&fStream, MAX_WBITS + kGzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~GzipUnpacker() override { inflateEnd(&fStream); }
  GzipUnpacker(const GzipUnpacker&) = delete;
  GzipUnpacker& operator=(const GzipUnpacker&) = delete;

 protected:
  std::size_t Unpack(char* buffer, std::size_t size) override {
    std::size_t filled = 0;
    while (filled < size && !fEnded) {
      const auto room = static_cast<uInt>(std::min<std::size_t>(size - filled, std::numeric_limits<uInt>::max()));
      const auto offered =
          static_cast<uInt>(std::min<std::size_t>(fPacked.size() - fAt, std::numeric_limits<uInt>::max()));
      fStream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(fPacked.data() + fAt));
      fStream.avail_in = offered;
      fStream.next_out = reinterpret_cast<Bytef*>(buffer + filled);
      fStream.avail_out = room;
      const int result = inflate(&fStream, Z_NO_FLUSH);
      fAt += offered - fStream.avail_in;
      filled += room - fStream.avail_out;
      if (result == Z_STREAM_END)
        TurnToNextMember();
      else if (result == Z_BUF_ERROR || (result == Z_OK && fAt == fPacked.size() && fStream.avail_out > 0))
        FailAtEnd();
      else if (result != Z_OK)
        FailAt(fAt, fStream.msg != nullptr ? fStream.msg : "unknown reason");
    }
    return filled;
  }

 private:
  void TurnToNextMember() {
    // Tapes and some programs fill up with zeros.
    const std::size_t next = std::min(fPacked.find_first_not_of('\0', fAt), fPacked.size());
    fEnded = next == fPacked.size();
    if (fEnded) return;
    if (!BeginsWith(fPacked.substr(fAt), kGzipMark)) FailAt(fAt, "what follows is not compressed");
    inflateReset(&fStream);
  }

  z_stream fStream{};
  std::size_t fAt = 0;
  bool fEnded = false;
};

class ZstandardUnpacker : public Unpacker {
 public:
  ZstandardUnpacker(std::string_view packed, std::string name)
      : Unpacker(packed, std::move(name)), fStream(ZSTD_createDStream(), &ZSTD_freeDStream) {
    if (!fStream) throw std::bad_alloc();
  }

 protected:
  std::size_t Unpack(char* buffer, std::size_t size) override {
    ZSTD_inBuffer in{fPacked.data(), fPacked.size(), fAt};
    ZSTD_outBuffer out{buffer, size, 0};
    while (out.pos < out.size && (in.pos < in.size || fInFrame)) {
      const std::size_t readBefore = in.pos;
      const std::size_t writtenBefore = out.pos;
      const std::size_t result = ZSTD_decompressStream(fStream.get(), &out, &in);
      if (ZSTD_isError(result) != 0) FailAt(in.pos, ZSTD_getErrorName(result));
      fInFrame = result != 0;
      if (in.pos == readBefore && out.pos == writtenBefore) FailAtEnd();
    }
    fAt = in.pos;
    return out.pos;
  }

 private:
  std::unique_ptr<ZSTD_DStream, decltype(&ZSTD_freeDStream)> fStream;
  std::size_t fAt = 0;
  bool fInFrame = true;
};

}  // namespace

Packing PackingOf(std::string_view bytes) {
  if (BeginsWith(bytes, kGzipMark)) return Packing::Gzip;
  return BeginsWith(bytes, kZstandardMark) ? Packing::Zstandard : Packing::None;
}

std::string WithoutPackedEnding(const std::string& path) {
  const std::string lower = LowerAscii(path);
  for (const std::string_view ending : {".gz"sv, ".zst"sv})
    if (lower.size() > ending.size() && std::string_view(lower).substr(lower.size() - ending.size()) == ending)
      return path.substr(0, path.size() - ending.size());
  return path;
}

Unpacker::Unpacker(std::string_view packed, std::string name) : fPacked(packed), fName(std::move(name)) {}
Unpacker::~Unpacker() = default;

std::size_t Unpacker::Read(char* buffer, std::size_t size) {
  const std::size_t unpacked = Unpack(buffer, size);
  fUnpacked += unpacked;
  if (fUnpacked > kMostBytes && fUnpacked / kMostTimes > fPacked.size())
    throw DataError(fmt::format(
        "{}: it unpacks to more than {} times its {} bytes, which data do not do; if it is meant so, unpack "
        "it and give the unpacked file",
        fName, kMostTimes, fPacked.size()));
  return unpacked;
}

void Unpacker::FailAt(std::size_t at, const std::string& problem) const {
  throw DataError(fmt::format("{}: the compressed file is damaged at its byte {} ({}); fetch or pack it again", fName,
                              at + 1, problem));
}

void Unpacker::FailAtEnd() const {
  throw DataError(fmt::format("{}: the compressed file ends too early, after {} bytes; fetch or pack it again", fName,
                              fPacked.size()));
}

std::unique_ptr<Unpacker> NewUnpacker(Packing packing, std::string_view packed, const std::string& name) {
  switch (packing) {
    case Packing::Gzip:
      return std::make_unique<GzipUnpacker>(packed, name);
    case Packing::Zstandard:
      return std::make_unique<ZstandardUnpacker>(packed, name);
    case Packing::None:
      break;
  }
  throw std::invalid_argument(name + " is not compressed");
}

}  // namespace runtime::data
