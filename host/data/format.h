// Print and write formats.
#pragma once

#include <cstdint>

/// The type codes of formats. A code outside the list is possible in a file and names no format.
enum FormatType : int {
  kFormatNone = 0,
  kFormatA = 1,
  kFormatAHex = 2,
  kFormatComma = 3,
  kFormatDollar = 4,
  kFormatF = 5,
  kFormatIB = 6,
  kFormatPIBHex = 7,
  kFormatP = 8,
  kFormatPIB = 9,
  kFormatPK = 10,
  kFormatRB = 11,
  kFormatRBHex = 12,
  kFormatZ = 15,
  kFormatN = 16,
  kFormatE = 17,
  kFormatDate = 20,
  kFormatTime = 21,
  kFormatDateTime = 22,
  kFormatADate = 23,
  kFormatJDate = 24,
  kFormatDTime = 25,
  kFormatWkDay = 26,
  kFormatMonth = 27,
  kFormatMoYr = 28,
  kFormatQYr = 29,
  kFormatWkYr = 30,
  kFormatPct = 31,
  kFormatDot = 32,
  kFormatCCA = 33,
  kFormatCCB = 34,
  kFormatCCC = 35,
  kFormatCCD = 36,
  kFormatCCE = 37,
  kFormatEDate = 38,
  kFormatSDate = 39,
  kFormatG = 40,
  kFormatMTime = 85,
  kFormatYMDHMS = 86
};

/// A format record: width in columns, type code, decimals.
struct MAVO_Format {
  std::uint16_t width = 0;
  std::uint8_t type = 0;
  std::uint8_t decimals = 0;
};
