#include "runtime/data/dictionary/ddi/xmltext.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/csv/inputtext.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kNone = std::string_view::npos;

[[noreturn]] void FailAt(const std::string& origin, std::string_view text, std::size_t offset,
                         const std::string& problem) {
  const TextLines::Place place = TextLines(text.substr(0, offset + 1)).Of(offset);
  throw DataError(fmt::format("{}:{}:{}: {}", origin, place.line, place.column, problem));
}

/// Passes over a document once, from mark to mark.
class XmlCheck {
 public:
  XmlCheck(std::string_view text, const std::string& origin) : fText(text), fOrigin(origin) {}

  void Run() {
    while (true) {
      const std::size_t mark = std::min(fText.find('<', fAt), fText.size());
      CheckCharacters(mark);
      fAt = mark;
      if (fAt == fText.size()) break;
      TakeMark();
    }
    if (!fOpen.empty())
      FailAt(fOrigin, fText, fText.size() - 1,
             fmt::format("the file ends within {}, which begins in line {}; it may have been cut off",
                         Tag(fOpen.back().name), LineOf(fOpen.back().offset)));
    if (!fHasRoot) throw DataError(fOrigin + ": the file holds no XML element");
  }

 private:
  struct OpenElement {
    std::string_view name;
    std::size_t offset;
  };

  [[noreturn]] void Fail(std::size_t offset, const std::string& problem) const {
    FailAt(fOrigin, fText, offset, "this is no well-formed XML: " + problem);
  }
  static std::string Tag(std::string_view name) { return QuotedCell("<" + std::string(name) + ">"); }
  std::size_t LineOf(std::size_t offset) const { return TextLines(fText.substr(0, offset + 1)).Of(offset).line; }
  bool StandsHere(std::string_view word) const { return fText.substr(fAt, word.size()) == word; }

  void CheckCharacters(std::size_t end) {
    if (!fOpen.empty()) {
      CheckReferences(fAt, end);
      return;
    }
    const std::size_t first = fText.substr(0, end).find_first_not_of(kBlanks, fAt);
    if (first == kNone) return;
    Fail(first, fHasRoot ? "there is text behind the end of the document" : "there is text before the first element");
  }

  void TakeMark() {
    if (StandsHere("<!--")) return PassOver("<!--", "-->", "comment");
    if (StandsHere("<![CDATA[") && !fOpen.empty()) return PassOver("<![CDATA[", "]]>", "CDATA section");
    if (StandsHere("<?")) return PassOver("<?", "?>", "processing instruction");
    if (StandsHere("<!DOCTYPE") || StandsHere("<!doctype"))
      FailAt(
          fOrigin, fText, fAt,
          "the document has a document type declaration (DOCTYPE), which is not read, for it can define entities and "
          "name other files; delete the declaration, from <!DOCTYPE to its >");
    if (StandsHere("<!")) Fail(fAt, "a declaration stands here");
    if (StandsHere("</")) return TakeEndTag();
    TakeStartTag();
  }

  void PassOver(std::string_view opening, std::string_view closing, const char* what) {
    const std::size_t end = fText.find(closing, fAt + opening.size());
    if (end == kNone) Fail(fAt, fmt::format("the {} that begins here is not closed", what));
    fAt = end + closing.size();
  }

  void TakeEndTag() {
    const std::size_t end = fText.find('>', fAt);
    if (end == kNone) Fail(fAt, "the tag that begins here is not closed; the file may have been cut off");
    std::string_view name = fText.substr(fAt + 2, end - fAt - 2);
    name = name.substr(0, name.find_last_not_of(kBlanks) + 1);
    if (fOpen.empty()) Fail(fAt, fmt::format("{} ends an element that is not open", Tag("/" + std::string(name))));
    if (name != fOpen.back().name)
      Fail(fAt, fmt::format("{} stands where {} must be closed, which begins in line {}", Tag("/" + std::string(name)),
                            Tag(fOpen.back().name), LineOf(fOpen.back().offset)));
    fOpen.pop_back();
    fAt = end + 1;
  }

  void TakeStartTag() {
    const std::size_t begin = fAt;
    std::size_t at = std::min(fText.find_first_of(" \t\r\n/>", begin + 1), fText.size());
    const std::string_view name = fText.substr(begin + 1, at - begin - 1);
    if (name.empty() || name.find_first_of("<&\"'=") != kNone) Fail(begin, "no element's name stands behind this <");
    if (fOpen.empty() && fHasRoot) Fail(begin, "a second element stands behind the end of the document");
    while (true) {
      at = fText.find_first_of("\"'<>", at);
      if (at == kNone) Fail(begin, "the tag that begins here is not closed; the file may have been cut off");
      if (fText[at] == '<') Fail(begin, "the tag that begins here is not closed before the next one");
      if (fText[at] == '>') break;
      at = PassOverValue(at);
    }
    fHasRoot = true;
    fAt = at + 1;
    if (fText[at - 1] == '/') return;
    if (fOpen.size() == kDeepestXml)
      FailAt(fOrigin, fText, begin, fmt::format("the elements are nested deeper than {} levels", kDeepestXml));
    fOpen.push_back({name, begin});
  }

  /// From the quote of an attribute's value to behind its closing one.
  std::size_t PassOverValue(std::size_t quote) {
    const std::size_t end = fText.find(fText[quote], quote + 1);
    if (end == kNone) Fail(quote, "the quote that opens here is not closed; the file may have been cut off");
    const std::size_t mark = fText.substr(0, end).find('<', quote);
    if (mark != kNone) Fail(mark, "a < stands in the value of an attribute; a quote may be missing");
    CheckReferences(quote, end);
    return end + 1;
  }

  void CheckReferences(std::size_t begin, std::size_t end) {
    const std::string_view text = fText.substr(0, end);
    for (std::size_t at = text.find('&', begin); at != kNone; at = text.find('&', at + 1)) {
      const std::size_t close = text.find(';', at);
      const std::string_view name =
          close == kNone || close - at > 32 ? std::string_view() : text.substr(at + 1, close - at - 1);
      if (name.empty()) Fail(at, "a & stands by itself; it is written &amp;");
      if (name.front() == '#') {
        if (!IsCharacterNumber(name.substr(1)))
          Fail(at, fmt::format("{} is the number of no character", QuotedCell(text.substr(at, name.size() + 2))));
        continue;
      }
      constexpr std::string_view kKnown[] = {"amp", "lt", "gt", "quot", "apos"};
      if (std::find(std::begin(kKnown), std::end(kKnown), name) == std::end(kKnown))
        Fail(at, fmt::format("the entity {} is not known; write the character itself",
                             QuotedCell(text.substr(at, name.size() + 2))));
    }
  }

  /// 9, 10, 13 and from 32 on, without surrogates; decimal, or hexadecimal behind an x.
  static bool IsCharacterNumber(std::string_view digits) {
    const bool isHex = !digits.empty() && digits.front() == 'x';
    if (isHex) digits.remove_prefix(1);
    unsigned long number = 0;
    for (const char digit : digits) {
      constexpr std::string_view kDigits = "0123456789abcdef";
      const char lower = digit >= 'A' && digit <= 'F' ? static_cast<char>(digit + 32) : digit;
      const std::size_t value = kDigits.find(lower);
      if (value >= (isHex ? 16U : 10U)) return false;
      number = number * (isHex ? 16 : 10) + value;
      if (number > 0x10FFFF) return false;
    }
    if (digits.empty() || (number >= 0xD800 && number <= 0xDFFF)) return false;
    return number >= 32 || number == 9 || number == 10 || number == 13;
  }

  std::string_view fText;
  const std::string& fOrigin;
  std::size_t fAt = 0;
  bool fHasRoot = false;
  std::vector<OpenElement> fOpen;
};

/// The encoding that the XML declaration names, empty without one. Reads single bytes.
std::string_view DeclaredEncoding(std::string_view bytes) {
  if (bytes.substr(0, 5) != "<?xml") return {};
  const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
  const std::size_t word = declaration.find("encoding");
  if (word == kNone) return {};
  const std::size_t quote = declaration.find_first_of("\"'", word);
  if (quote == kNone) return {};
  const std::size_t end = declaration.find(declaration[quote], quote + 1);
  return end == kNone ? std::string_view() : declaration.substr(quote + 1, end - quote - 1);
}

bool IsOfWideUnits(std::string_view encoding) {
  return encoding.size() > 3 && (encoding.find("16") != kNone || encoding.find("32") != kNone || encoding == "UCS-2" ||
                                 encoding == "ucs-2" || encoding == "UCS-4" || encoding == "ucs-4");
}

struct EncodedXml {
  std::string encoding;  // empty: UTF-8
  std::size_t begin = 0;
};

bool HoldsByteOfC1(std::string_view bytes) {
  return std::any_of(bytes.begin(), bytes.end(), [](char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x80 && value < 0xA0;
  });
}

EncodedXml FindEncoding(std::string_view bytes, const std::string& path, std::vector<Note>& notes) {
  using namespace std::string_view_literals;
  if (const auto mark = FindByteOrderMark(bytes))
    return {IsUtf8Name(mark->encoding) ? std::string() : mark->encoding, mark->length};
  if (bytes.substr(0, 4) == "<\0?\0"sv || bytes.substr(0, 4) == "<\0c\0"sv) return {"UTF-16LE", 0};
  if (bytes.substr(0, 4) == "\0<\0?"sv || bytes.substr(0, 4) == "\0<\0c"sv) return {"UTF-16BE", 0};
  const std::string declared(DeclaredEncoding(bytes));
  if (declared.empty() || IsUtf8Name(declared) || declared == "US-ASCII" || declared == "us-ascii") return {};
  if (IsOfWideUnits(declared)) {  // it has just been read byte by byte
    notes.push_back({false, fmt::format("{}:1: the declaration says encoding {}, and the file is written in single "
                                        "bytes; it was read as UTF-8",
                                        path, QuotedCell(declared))});
    return {};
  }
  if (!IsKnownEncoding(declared))
    throw DataError(fmt::format("{}:1: the encoding {} of the declaration is not known; save the file as UTF-8", path,
                                QuotedCell(declared)));
  const bool isLatin1 = declared == "ISO-8859-1" || declared == "iso-8859-1" || declared == "latin1";
  if (isLatin1 && HoldsByteOfC1(bytes)) {
    notes.push_back({false, fmt::format("{}:1: the declaration says encoding {}, and the file holds characters of "
                                        "windows-1252, which it was read as",
                                        path, QuotedCell(declared))});
    return {"windows-1252", 0};
  }
  return {declared, 0};
}

}  // namespace

TextLines::TextLines(std::string_view text) : fBegins{0} {
  for (std::size_t at = text.find_first_of("\r\n"); at != kNone; at = text.find_first_of("\r\n", at + 1)) {
    if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') ++at;
    fBegins.push_back(at + 1);
  }
}

TextLines::Place TextLines::Of(std::size_t offset) const {
  const auto next = std::upper_bound(fBegins.begin(), fBegins.end(), offset);
  return {static_cast<std::size_t>(next - fBegins.begin()), offset - *(next - 1) + 1};
}

void CheckXmlText(std::string_view text, const std::string& origin) { XmlCheck(text, origin).Run(); }

std::string ReadXmlText(const std::string& path, std::vector<Note>& notes) {
  const FileBytes file(path);
  const EncodedXml encoded = FindEncoding(file.bytes(), path, notes);
  const std::string_view bytes = file.bytes().substr(encoded.begin);
  if (encoded.encoding.empty()) {
    CheckXmlText(bytes, path);
    const std::size_t bad = FirstInvalidUtf8(bytes);
    if (bad != kNone)
      FailAt(path, bytes, bad,
             "this byte is no UTF-8; save the file as UTF-8, or name its encoding in the first line, such as <?xml "
             "version=\"1.0\" encoding=\"ISO-8859-1\"?>");
  }
  Replacements replaced;
  std::string text = encoded.encoding.empty() ? std::string(bytes) : ConvertedToUtf8(bytes, encoded.encoding, replaced);
  if (replaced.count > 0)
    throw DataError(
        fmt::format("{}:{}: this line holds bytes that have no meaning in the encoding {}; save the file as "
                    "UTF-8",
                    path, replaced.firstLine, encoded.encoding));
  if (!encoded.encoding.empty()) CheckXmlText(text, path);
  const std::size_t nul = text.find('\0');
  if (nul != kNone)
    FailAt(path, text, nul, "there is a NUL character, which XML does not have; the file may be damaged");
  return text;
}

}  // namespace runtime::data
