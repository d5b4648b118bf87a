"""Which characters a format shows as escapes, by lists of its own of Unicode's properties."""

# Control characters, and marks and controls of the writing direction, line and paragraph separators.
CONTROLS = [(0x00, 0x1F), (0x7F, 0x9F), (0x061C, 0x061C), (0x200E, 0x200F), (0x2028, 0x202E), (0x2066, 0x2069)]

# Default_Ignorable_Code_Point without variation selectors and joiners (DerivedCoreProperties.txt), interlinear
# annotations. The noncharacters are computed.
HIDDEN = CONTROLS + [
    (0x00AD, 0x00AD), (0x115F, 0x1160), (0x17B4, 0x17B5), (0x180E, 0x180E), (0x200B, 0x200B), (0x2060, 0x206F), (0x3164, 0x3164),
    (0xFEFF, 0xFEFF), (0xFFA0, 0xFFA0), (0xFFF0, 0xFFFB), (0x1BCA0, 0x1BCA3), (0x1D173, 0x1D17A), (0xE0000, 0xE00FF), (0xE01F0, 0xE0FFF),
]  # fmt: skip


def among(character, ranges):
    return any(low <= character <= high for low, high in ranges)


def is_control(character):
    return among(ord(character), CONTROLS)


def is_hidden(character):
    point = ord(character)
    return among(point, HIDDEN) or 0xFDD0 <= point <= 0xFDEF or point & 0xFFFE == 0xFFFE


def escape(character):
    point = ord(character)
    if point < 0x100:
        return f"\\x{point:02x}"
    return f"\\u{point:04x}" if point < 0x10000 else f"\\U{point:08x}"


def shown(text, hides, kept="\t\n"):
    """The text with the characters that `hides` tells of as escapes, but for those kept."""
    if text.isascii() and text.isprintable():
        return text
    return "".join(escape(c) if c not in kept and hides(c) else c for c in text)


def with_line_feeds(text):
    return text.replace("\r\n", "\n")
