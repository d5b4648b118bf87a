// Writes a synthetic survey: CSV and its dictionary, the same bytes for the same arguments on every machine.
//
//   survey_generator ROWS COLUMNS FOLDER NAME    writes FOLDER/NAME.csv and FOLDER/NAME.schema.json
//
// Of every 20 columns 16 hold answer codes 1 to 7, with 3 % of -9 (declared missing) and 5 % blank; 3 hold numbers (two
// like sums of money with two decimals, one like a measurement with all its digits); 1 holds short texts, of 150
// different ones (few enough for a codebook to count), the frequent ones much more often than the rare. The twelfth
// column of all, a number, is weight12: from 0.2 to 5 with four decimals, for weighted runs on the same data; the
// dictionary does not name it as the weight.
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::uint64_t kSeed = 20240229;
constexpr int kDistinctTexts = 150;
constexpr int kWeightColumn = 11;

enum class Kind { Code, Money, Measurement, Weight, Text };

Kind KindOf(int column) {
  if (column == kWeightColumn) return Kind::Weight;
  switch (column % 20) {
    case 4:
    case 11:
      return Kind::Money;
    case 17:
      return Kind::Measurement;
    case 19:
      return Kind::Text;
    default:
      return Kind::Code;
  }
}

/// splitmix64, by its author's published constants: every row has a sequence of its own, whatever stands before it.
class Random {
 public:
  explicit Random(std::uint64_t seed) : fState(seed) {}

  std::uint64_t Next() {
    std::uint64_t z = (fState += 0x9E3779B97F4A7C15U);
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31U);
  }
  /// 0 to below `bound`, from the upper half of one number.
  std::uint32_t Below(std::uint32_t bound) { return static_cast<std::uint32_t>(((Next() >> 32U) * bound) >> 32U); }

 private:
  std::uint64_t fState;
};

struct CloseFile {
  void operator()(std::FILE* file) const {
    if (std::fclose(file) != 0) throw std::runtime_error("a file could not be written to its end");
  }
};

/// A file of which large pieces are written at once.
class Output {
 public:
  explicit Output(const std::string& path) : fFile(std::fopen(path.c_str(), "wb")) {
    if (!fFile) throw std::runtime_error("cannot write " + path);
    fBuffer.reserve(kPiece + 4096);
  }

  void Text(std::string_view text) { fBuffer += text; }
  void Character(char character) { fBuffer += character; }
  template <class Number>
  void Digits(Number number) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    fBuffer.append(digits.data(), end);
  }
  void EndLine() {
    fBuffer += '\n';
    if (fBuffer.size() >= kPiece) Flush();
  }
  void Close() {
    Flush();
    CloseFile()(fFile.release());
  }

 private:
  static constexpr std::size_t kPiece = 1 << 20;

  void Flush() {
    if (std::fwrite(fBuffer.data(), 1, fBuffer.size(), fFile.get()) != fBuffer.size())
      throw std::runtime_error("a file could not be written: is the disk full?");
    fBuffer.clear();
  }

  std::unique_ptr<std::FILE, CloseFile> fFile;
  std::string fBuffer;
};

/// Three to eight letters each; with this seed no two are the same.
std::vector<std::string> DistinctTexts() {
  Random random(kSeed);
  std::vector<std::string> texts(kDistinctTexts);
  for (std::string& text : texts) {
    const std::uint32_t length = 3 + random.Below(6);
    for (std::uint32_t at = 0; at < length; ++at) text += static_cast<char>('a' + random.Below(26));
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
  }
  return texts;
}

std::string NameOf(int column) {
  switch (KindOf(column)) {
    case Kind::Code:
      return "q" + std::to_string(column + 1);
    case Kind::Money:
      return "income" + std::to_string(column + 1);
    case Kind::Measurement:
      return "measured" + std::to_string(column + 1);
    case Kind::Weight:
      return "weight" + std::to_string(column + 1);
    case Kind::Text:
      break;
  }
  return "town" + std::to_string(column + 1);
}

void WriteCell(Kind kind, Random& random, const std::vector<std::string>& texts, Output& out) {
  switch (kind) {
    case Kind::Code: {
      const std::uint32_t lot = random.Below(100);
      if (lot < 5) return;
      if (lot < 8) return out.Text("-9");
      // Middle answers are the more frequent ones.
      return out.Character(static_cast<char>('1' + (random.Below(4) + random.Below(4))));
    }
    case Kind::Money: {
      const std::uint32_t cents = random.Below(1'000'000);
      out.Digits(cents / 100);
      out.Character('.');
      out.Character(static_cast<char>('0' + cents / 10 % 10));
      return out.Character(static_cast<char>('0' + cents % 10));
    }
    case Kind::Measurement:
      return out.Digits(static_cast<double>(random.Next() >> 11U) * 0x1p-53 * 200.0 - 50.0);
    case Kind::Weight: {
      const std::uint32_t tenThousandths = 2'000 + random.Below(48'001);
      out.Digits(tenThousandths / 10'000);
      out.Character('.');
      for (std::uint32_t unit = 1'000; unit > 0; unit /= 10)
        out.Character(static_cast<char>('0' + tenThousandths / unit % 10));
      return;
    }
    case Kind::Text: {
      // The product of two even draws is small more often than not.
      const std::uint32_t drawn = random.Below(kDistinctTexts) * random.Below(kDistinctTexts) / kDistinctTexts;
      return out.Text(texts[drawn]);
    }
  }
}

void WriteData(int rows, int columns, const std::string& path) {
  const std::vector<std::string> texts = DistinctTexts();
  std::vector<Kind> kinds;
  Output out(path);
  for (int column = 0; column < columns; ++column) {
    kinds.push_back(KindOf(column));
    if (column > 0) out.Character(',');
    out.Text(NameOf(column));
  }
  out.EndLine();
  for (int row = 0; row < rows; ++row) {
    Random random(kSeed ^ (static_cast<std::uint64_t>(row) << 32U));
    for (int column = 0; column < columns; ++column) {
      if (column > 0) out.Character(',');
      WriteCell(kinds[static_cast<std::size_t>(column)], random, texts, out);
    }
    out.EndLine();
  }
  out.Close();
}

void WriteDictionary(int columns, const std::string& path) {
  Output out(path);
  out.Text("{\n  \"title\": \"Synthetic survey\",\n  \"fields\": [");
  for (int column = 0; column < columns; ++column) {
    out.Text(column > 0 ? ",\n    " : "\n    ");
    out.Text("{\"name\": \"" + NameOf(column) + "\", \"title\": \"Question " + std::to_string(column + 1) + "\", ");
    switch (KindOf(column)) {
      case Kind::Code:
        out.Text(
            "\"type\": \"integer\", \"missingValues\": [{\"value\": \"-9\", \"label\": \"No answer\"}, {\"value\": "
            "\"\", \"label\": \"Not asked\"}], "
            "\"categories\": [");
        for (int code = 1; code <= 7; ++code)
          out.Text((code > 1 ? ", {\"value\": " : "{\"value\": ") + std::to_string(code) + ", \"label\": \"Answer " +
                   std::to_string(code) + "\"}");
        out.Text("]}");
        break;
      case Kind::Money:
      case Kind::Measurement:
      case Kind::Weight:
        out.Text("\"type\": \"number\", \"codebook\": {\"measure\": \"scale\"}}");
        break;
      case Kind::Text:
        out.Text("\"type\": \"string\"}");
        break;
    }
  }
  out.Text("\n  ]\n}");
  out.EndLine();
  out.Close();
}

}  // namespace

int main(int argc, char** argv) {
  const int rows = argc == 5 ? std::atoi(argv[1]) : 0;
  const int columns = argc == 5 ? std::atoi(argv[2]) : 0;
  if (rows <= 0 || columns <= 0) {
    std::fputs("usage: survey_generator ROWS COLUMNS FOLDER NAME\n", stderr);
    return 2;
  }
  try {
    const std::string path = std::string(argv[3]) + "/" + argv[4];
    WriteData(rows, columns, path + ".csv");
    WriteDictionary(columns, path + ".schema.json");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "survey_generator: %s\n", error.what());
    return 1;
  }
  return 0;
}
