#include "runtime/data/compression/packing.h"

#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>
#include <zstd.h>

#include "runtime/data/csv/inputtext.h"
#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

std::string Gzipped(const std::string& text) {
  constexpr int kGzip = 16;
  z_stream stream{};
  deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, MAX_WBITS + kGzip, 8, Z_DEFAULT_STRATEGY);
  std::string packed(deflateBound(&stream, text.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

std::string Zstandarded(const std::string& text) {
  std::string packed(ZSTD_compressBound(text.size()), '\0');
  packed.resize(ZSTD_compress(packed.data(), packed.size(), text.data(), text.size(), 3));
  return packed;
}

std::string Unpacked(const std::string& packed, std::size_t pieceBytes = 1000) {
  const auto unpacker = NewUnpacker(PackingOf(packed), packed, "x");
  std::string text;
  std::string piece(pieceBytes, '\0');
  while (const std::size_t got = unpacker->Read(piece.data(), piece.size())) text.append(piece, 0, got);
  return text;
}

std::string ErrorOf(const std::string& packed) {
  try {
    Unpacked(packed);
  } catch (const DataError& error) {
    return error.what();
  }
  return "";
}

std::string SomeText(std::size_t bytes) {
  std::mt19937 random(7);
  std::string text;
  while (text.size() < bytes) text += std::to_string(random() % 100'000) + ",";
  return text;
}

TEST(Packing, isKnownByItsFirstBytes) {
  EXPECT_EQ(PackingOf(Gzipped("a")), Packing::Gzip);
  EXPECT_EQ(PackingOf(Zstandarded("a")), Packing::Zstandard);
  EXPECT_EQ(PackingOf("a,b\n"), Packing::None);
  EXPECT_EQ(PackingOf(""), Packing::None);
}

TEST(Packing, isNoPartOfAName) {
  EXPECT_EQ(WithoutPackedEnding("x/a.csv.gz"), "x/a.csv");
  EXPECT_EQ(WithoutPackedEnding("a.TSV.ZST"), "a.TSV");
  EXPECT_EQ(WithoutPackedEnding("a.csv"), "a.csv");
  EXPECT_EQ(WithoutPackedEnding(".gz"), ".gz");
}

TEST(Unpacker, givesTheTextWhateverThePieces) {
  const std::string text = SomeText(300'000);
  for (const std::size_t piece : {999U, 65'536U, 1'000'000U}) {
    EXPECT_TRUE(Unpacked(Gzipped(text), piece) == text) << piece;
    EXPECT_TRUE(Unpacked(Zstandarded(text), piece) == text) << piece;
  }
  EXPECT_EQ(Unpacked(Gzipped("a,b\n"), 1), "a,b\n");
  EXPECT_EQ(Unpacked(Zstandarded("a,b\n"), 1), "a,b\n");
  EXPECT_EQ(Unpacked(Gzipped("")), "");
  EXPECT_EQ(Unpacked(Zstandarded("")), "");
}

TEST(Unpacker, joinsWhatWasPackedInParts) {
  EXPECT_EQ(Unpacked(Gzipped("a,b\n") + Gzipped("1,2\n")), "a,b\n1,2\n");
  EXPECT_EQ(Unpacked(Zstandarded("a,b\n") + Zstandarded("1,2\n")), "a,b\n1,2\n");
  EXPECT_EQ(Unpacked(Gzipped("a\n") + std::string(512, '\0')), "a\n") << "filled up with zeros";
}

TEST(Unpacker, tellsWhatIsCutOff) {
  for (const std::string& whole : {Gzipped(SomeText(50'000)), Zstandarded(SomeText(50'000))})
    for (const std::size_t size : {std::size_t{5}, whole.size() / 2, whole.size() - 1})
      EXPECT_THAT(ErrorOf(whole.substr(0, size)), HasSubstr("ends too early, after " + std::to_string(size))) << size;
}

TEST(Unpacker, tellsWhatIsDamaged) {
  std::mt19937 random(11);
  for (const std::string& whole : {Gzipped(SomeText(20'000)), Zstandarded(SomeText(20'000))}) {
    for (int i = 0; i < 300; ++i) {
      std::string damaged = whole;
      damaged[4 + random() % (damaged.size() - 4)] ^= static_cast<char>(1 + random() % 255);
      try {
        Unpacked(damaged);  // a byte that nobody looks at may be another one
      } catch (const DataError& error) {
        EXPECT_THAT(error.what(), AnyOf(HasSubstr("damaged at its byte"), HasSubstr("ends too early")));
      }
    }
  }
  EXPECT_THAT(ErrorOf(Gzipped("a") + "rubbish"), HasSubstr("what follows is not compressed"));
}

TEST(Unpacker, stopsAtWhatUnpacksBeyondAllMeasure) {
  // Zeros pack best: some hundred megabytes in one member, packed once and repeated.
  const std::string member = Gzipped(std::string(std::size_t{128} << 20, '0'));
  std::string bomb;
  for (int i = 0; i < 9; ++i) bomb += member;
  const auto unpacker = NewUnpacker(Packing::Gzip, bomb, "bomb.csv.gz");
  std::string piece(std::size_t{1} << 20, '\0');
  std::size_t unpacked = 0;
  try {
    while (const std::size_t got = unpacker->Read(piece.data(), piece.size())) unpacked += got;
    FAIL() << unpacked;
  } catch (const DataError& error) {
    EXPECT_THAT(error.what(), HasSubstr("bomb.csv.gz: it unpacks to more than 500 times"));
  }
  EXPECT_LE(unpacked, Unpacker::kMostBytes);
}

TEST(InputText, isUnpackedByTheWay) {
  const DataFolder folder;
  std::vector<Note> notes;
  for (const std::string& packed : {Gzipped("\xEF\xBB\xBF"
                                            "a,b\n1,2\n"),
                                    Zstandarded("a,b\n1,2\n")}) {
    const InputText input(folder.Write("x.csv.gz", packed), std::nullopt, notes);
    EXPECT_EQ(input.text(), "a,b\n1,2\n");
  }
  EXPECT_THROW(InputText(folder.Write("e.csv.gz", Gzipped("")), std::nullopt, notes), DataError);
}

TEST(InputText, isUnpackedIntoAFileWhenItIsLong) {
  const DataFolder folder;
  const std::string text = SomeText(std::size_t{70} << 20);
  std::vector<Note> notes;
  const InputText input(folder.Write("x.csv.zst", Zstandarded(text)), std::nullopt, notes);
  EXPECT_TRUE(input.text() == text);
}

}  // namespace
}  // namespace runtime::data
