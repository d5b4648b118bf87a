// One data value, as it is handed about between the module and the host.
#pragma once

/// Always passed by pointer. Of a numeric variable it holds `number` (system-missing is a NaN). Of a string variable
/// the pointer stands at the first of the value's bytes, blank-padded to the variable's width, without a terminator;
/// `bytes` is then only the beginning of them.
union OBS {
  double number;
  char bytes[8];
};
