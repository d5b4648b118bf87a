"""How values are shown as text.

ANY_TEXT stands for a text that is not foretold here (durations, times with fractions); a comparison lets it pass."""

from datetime import date, timedelta
from fractions import Fraction

ANY_TEXT = object()

TYPE_NAMES = ["A", "AHEX", "COMMA", "DOLLAR", "F", "IB", "PIBHEX", "P", "PIB", "PK", "RB", "RBHEX", "Z", "N", "E", "DATE",
              "TIME", "DATETIME", "ADATE", "JDATE", "DTIME", "WKDAY", "MONTH", "MOYR", "QYR", "WKYR", "PCT", "DOT", "CCA",
              "CCB", "CCC", "CCD", "CCE", "EDATE", "SDATE", "G", "MTIME", "YMDHMS"]
MONTHS = ["JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"]
DAY_FORMATS = ["DATE", "ADATE", "EDATE", "SDATE"]
TIME_FORMATS = ["DATETIME", "TIME", "DTIME", "YMDHMS", "MTIME"]
OWN_TYPE_FORMATS = ["COMMA", "DOT", "DOLLAR", "PCT"]


class Format:
    def __init__(self, kind, width, decimals):
        self.kind = kind
        self.width = width
        self.decimals = decimals

    def text(self):
        """The text of the Format row."""
        return f"{self.kind}{self.width}.{self.decimals}" if self.decimals else f"{self.kind}{self.width}"

    def report_text(self):
        """The same for the format of a number in the report: a width of 0 is left out, the decimals of a number are not."""
        if self.kind in DAY_FORMATS + TIME_FORMATS:
            return self.text()
        return self.kind + (str(self.width) if self.width else "") + f".{self.decimals}"


COUNT = Format("F", 0, 0)
PERCENT = Format("PCT", 0, 1)


def mean_format(own):
    if own.kind in DAY_FORMATS + TIME_FORMATS:
        return own
    if own.kind in OWN_TYPE_FORMATS:
        return Format(own.kind, 0, own.decimals + 2)
    return Format("F", 0, own.decimals + 2)


def deviation_format(own):
    """None for dates and times: a duration, whose decimals are not foretold."""
    if own.kind in DAY_FORMATS + TIME_FORMATS:
        return None
    if own.kind in OWN_TYPE_FORMATS:
        return Format(own.kind, 0, own.decimals + 3)
    return Format("F", 0, own.decimals + 3)


def parse_format(text):
    kind = text.rstrip("0123456789.")
    width, _, decimals = text[len(kind):].partition(".")
    return Format(kind.upper(), int(width or 0), int(decimals or 0))


def rounded_digits(value, decimals):
    """The digits of the exact value rounded to the nearest, half away from zero: whole part and fraction part."""
    scaled = abs(Fraction(value)) * 10**decimals
    whole = (2 * scaled.numerator + scaled.denominator) // (2 * scaled.denominator)
    digits = str(whole).rjust(decimals + 1, "0")
    return (digits[:len(digits) - decimals], digits[len(digits) - decimals:], whole)


def grouped(whole, mark):
    parts = []
    while len(whole) > 3:
        parts.insert(0, whole[-3:])
        whole = whole[:-3]
    return mark.join([whole] + parts)


def number_text(value, form):
    """`value` None is system-missing."""
    if value is None:
        return "."
    if form is None or form.kind in TIME_FORMATS:
        return time_text(value, form)
    if form.kind in DAY_FORMATS:
        return day_text(value, form)
    whole, fraction, scaled = rounded_digits(value, form.decimals)
    point = "."
    if form.kind in ("COMMA", "DOLLAR"):
        whole = grouped(whole, ",")
    elif form.kind == "DOT":
        whole, point = grouped(whole, "."), ","
    elif form.kind not in ("F", "PCT"):
        return ANY_TEXT
    text = whole + (point + fraction if fraction else "")
    if form.kind == "DOLLAR":
        text = "$" + text
    if form.kind == "PCT":
        text += "%"
    return "-" + text if value < 0 and scaled != 0 else text


def day_of(value):
    """The day on which the moment lies, None outside the calendar of this reader."""
    try:
        return date(1970, 1, 1) + timedelta(days=int(Fraction(value) // 86400))
    except OverflowError:
        return None


def day_text(value, form):
    day = day_of(value)
    if day is None:
        return ANY_TEXT
    if (form.kind, form.width) == ("DATE", 11):
        return f"{day.day:02d}-{MONTHS[day.month - 1]}-{day.year:04d}"
    if (form.kind, form.width) == ("ADATE", 10):
        return f"{day.month:02d}/{day.day:02d}/{day.year:04d}"
    if (form.kind, form.width) == ("EDATE", 10):
        return f"{day.day:02d}.{day.month:02d}.{day.year:04d}"
    if (form.kind, form.width) == ("SDATE", 10):
        return f"{day.year:04d}/{day.month:02d}/{day.day:02d}"
    return ANY_TEXT


def time_text(value, form):
    if form is None or Fraction(value).denominator != 1:
        return ANY_TEXT
    seconds = int(value)
    clock = f"{seconds // 3600 % 24:02d}:{seconds // 60 % 60:02d}:{seconds % 60:02d}"
    if (form.kind, form.width) == ("TIME", 8) and 0 <= seconds < 86400:
        return clock
    if (form.kind, form.width) == ("YMDHMS", 19):
        day = day_of(value)
        return ANY_TEXT if day is None else f"{day.year:04d}-{day.month:02d}-{day.day:02d} {clock}"
    return ANY_TEXT
