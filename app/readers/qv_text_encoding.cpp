#include "app/readers/qv_text_encoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "app/readers/qv_input_error.h"
#include "app/readers/qv_xml_check.h"

namespace {

enum class encoding {
  utf8,
  utf16_le,
  utf16_be,
  utf32_le,
  utf32_be,
  windows_1252,
  latin_9,
  unknown
};

constexpr std::size_t declaration_window = 400;
constexpr char32_t replacement = 0xFFFD;

[[noreturn]] void fail(const std::string& name, std::size_t line, const std::string& problem,
                       const std::string& advice) {
  throw qv::qv_input_error(qv::qv_input_error::kind::bad_input, {name, line, "", ""}, problem,
                           advice);
}

bool starts_with_bytes(std::string_view bytes, std::initializer_list<int> prefix) {
  std::size_t i = 0;
  for (const int byte : prefix)
    if (i >= bytes.size() || static_cast<unsigned char>(bytes[i++]) != byte) return false;
  return true;
}

// The value of `encoding="…"` in the XML declaration, lower case; empty without one.
std::string declared_encoding(std::string_view bytes) {
  std::string head(bytes.substr(0, declaration_window));
  head = head.substr(0, head.find("?>"));
  if (!head.starts_with("<?xml")) return {};
  const auto at = head.find("encoding");
  if (at == std::string::npos) return {};
  const auto open = head.find_first_of("\"'", at);
  if (open == std::string::npos) return {};
  const auto close = head.find(head[open], open + 1);
  if (close == std::string::npos) return {};
  std::string value = head.substr(open + 1, close - open - 1);
  std::transform(value.begin(), value.end(), value.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return value;
}

encoding find_encoding(const std::string& declared) {
  static constexpr std::array<std::pair<std::string_view, encoding>, 20> names = {{
      {"", encoding::utf8},
      {"utf-8", encoding::utf8},
      {"utf8", encoding::utf8},
      {"us-ascii", encoding::utf8},
      {"ascii", encoding::utf8},
      {"iso-8859-1", encoding::windows_1252},
      {"iso8859-1", encoding::windows_1252},
      {"iso_8859-1", encoding::windows_1252},
      {"latin1", encoding::windows_1252},
      {"latin-1", encoding::windows_1252},
      {"windows-1252", encoding::windows_1252},
      {"cp1252", encoding::windows_1252},
      {"iso-8859-15", encoding::latin_9},
      {"latin-9", encoding::latin_9},
      {"utf-16", encoding::utf16_le},
      {"utf-16le", encoding::utf16_le},
      {"utf-16be", encoding::utf16_be},
      {"unicode", encoding::utf16_le},
      {"utf-32", encoding::utf32_le},
      {"ucs-4", encoding::utf32_le},
  }};
  for (const auto& [name, value] : names)
    if (name == declared) return value;
  return encoding::unknown;
}

void append(std::string& text, char32_t c) {
  const auto byte = [&text](char32_t value) { text += static_cast<char>(value); };
  if (c < 0x80) {
    byte(c);
  } else if (c < 0x800) {
    byte(0xC0 | c >> 6U);
    byte(0x80 | (c & 0x3FU));
  } else if (c < 0x10000) {
    byte(0xE0 | c >> 12U);
    byte(0x80 | (c >> 6U & 0x3FU));
    byte(0x80 | (c & 0x3FU));
  } else {
    byte(0xF0 | c >> 18U);
    byte(0x80 | (c >> 12U & 0x3FU));
    byte(0x80 | (c >> 6U & 0x3FU));
    byte(0x80 | (c & 0x3FU));
  }
}

std::string from_utf16(const std::string& name, std::string_view bytes, bool big_endian) {
  std::string text;
  text.reserve(bytes.size() / 2);
  const auto unit = [bytes, big_endian](std::size_t i) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return static_cast<char32_t>(big_endian ? first << 8U | second : second << 8U | first);
  };
  const auto broken = [&](const char* problem) {
    fail(name, qv::qv_line_at(text, text.size()), problem,
         "export the file again, as UTF-8 if there is a choice");
  };
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    if (i + 1 == bytes.size()) broken("the UTF-16 text ends in the middle of a character");
    char32_t c = unit(i);
    if (c >= 0xDC00 && c < 0xE000) broken("a UTF-16 surrogate stands alone");
    if (c >= 0xD800 && c < 0xDC00) {
      const char32_t low = i + 3 < bytes.size() ? unit(i + 2) : 0;
      if (low < 0xDC00 || low >= 0xE000) broken("a UTF-16 surrogate stands alone");
      c = 0x10000 + ((c - 0xD800) << 10U) + (low - 0xDC00);
      i += 2;
    }
    append(text, c);
  }
  return text;
}

std::string from_utf32(const std::string& name, std::string_view bytes, bool big_endian) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 4) {
    char32_t c = 0xFFFFFFFF;
    if (i + 3 < bytes.size()) {
      c = 0;
      for (std::size_t k = 0; k < 4; ++k)
        c |= static_cast<char32_t>(static_cast<unsigned char>(bytes[i + k]))
             << 8U * (big_endian ? 3 - k : k);
    }
    if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))
      fail(name, qv::qv_line_at(text, text.size()),
           "the UTF-32 text holds a value that is no character",
           "export the file again, as UTF-8 if there is a choice");
    append(text, c);
  }
  return text;
}

std::string from_single_bytes(std::string_view bytes, bool latin_9) {
  // Windows-1252, 0x80 to 0x9F (https://encoding.spec.whatwg.org, index-windows-1252).
  static constexpr std::array<char32_t, 32> windows = {
      0x20AC,      replacement, 0x201A, 0x0192, 0x201E, 0x2026,      0x2020, 0x2021,
      0x02C6,      0x2030,      0x0160, 0x2039, 0x0152, replacement, 0x017D, replacement,
      replacement, 0x2018,      0x2019, 0x201C, 0x201D, 0x2022,      0x2013, 0x2014,
      0x02DC,      0x2122,      0x0161, 0x203A, 0x0153, replacement, 0x017E, 0x0178};
  static constexpr std::array<std::pair<char32_t, char32_t>, 8> euro_part = {{{0xA4, 0x20AC},
                                                                              {0xA6, 0x0160},
                                                                              {0xA8, 0x0161},
                                                                              {0xB4, 0x017D},
                                                                              {0xB8, 0x017E},
                                                                              {0xBC, 0x0152},
                                                                              {0xBD, 0x0153},
                                                                              {0xBE, 0x0178}}};
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 16);
  for (const char byte : bytes) {
    char32_t c = static_cast<unsigned char>(byte);
    if (c >= 0x80 && c < 0xA0) {
      c = windows[c - 0x80];
    } else if (latin_9) {
      for (const auto& [from, to] : euro_part)
        if (c == from) c = to;
    }
    append(text, c);
  }
  return text;
}

// Length of the sound UTF-8 character at `at`, 0 when there is none (RFC 3629, table of section 4).
std::size_t character_length(std::string_view text, std::size_t at) {
  const auto byte = [text](std::size_t i) -> unsigned {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  const auto continues = [&byte](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
  const unsigned a = byte(at);
  const unsigned b = byte(at + 1);
  if (a < 0x80) return 1;
  if (a < 0xC2 || !continues(at + 1)) return 0;
  if (a < 0xE0) return 2;
  if (!continues(at + 2)) return 0;
  if (a < 0xF0) return (a == 0xE0 && b < 0xA0) || (a == 0xED && b >= 0xA0) ? 0 : 3;
  if (!continues(at + 3)) return 0;
  return a > 0xF4 || (a == 0xF0 && b < 0x90) || (a == 0xF4 && b >= 0x90) ? 0 : 4;
}

// True when all bytes are ASCII and none is zero. Without a branch, so that the compiler takes many
// bytes at a time.
bool is_plain(const char* bytes, std::size_t count) {
  unsigned char all = 0;
  unsigned char least = 0xFF;
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    all |= byte;
    least = std::min(least, byte);
  }
  return all < 0x80 && least > 0;
}

struct utf8_finding {
  std::size_t unsound = std::string_view::npos;  // first byte that is no part of a sound character
  bool has_zero = false;                         // before that
};

// Looks at the characters from `first` on until one begins at or behind `last`, which becomes
// `first`. False, and `first` at the fault, for one that is not sound.
bool look_at_characters(std::string_view text, std::size_t& first, std::size_t last,
                        bool& has_zero) {
  while (first < last) {
    if (text[first] == '\0') has_zero = true;
    const std::size_t length = character_length(text, first);
    if (length == 0) return false;
    first += length;
  }
  return true;
}

// One pass over the text: large blocks most of which are plain, the others in small ones.
utf8_finding look_at_utf8(std::string_view text) {
  constexpr std::size_t large = 1024;
  constexpr std::size_t small = 64;
  utf8_finding finding;
  std::size_t i = 0;
  const auto pass_if_plain = [&text, &i](std::size_t block) {
    const std::size_t count = std::min(block, text.size() - i);
    const bool plain = is_plain(text.data() + i, count);
    if (plain) i += count;
    return plain;
  };
  while (i < text.size()) {
    if (pass_if_plain(large)) continue;
    for (const std::size_t end = std::min(i + large, text.size()); i < end;) {
      if (pass_if_plain(small)) continue;
      if (!look_at_characters(text, i, std::min(i + small, text.size()), finding.has_zero)) {
        finding.unsound = i;
        return finding;
      }
    }
  }
  return finding;
}

// `has_zero` becomes false when the text is known to hold no zero character.
std::string from_8_bit(const std::string& name, std::string bytes,
                       std::vector<std::string>& warnings, bool& has_zero) {
  const auto first = bytes.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) fail(name, 0, "is empty", "export the model again");
  if (bytes[first] != '<') fail(name, 1, "is not XML", "check that it is the file you mean");
  const std::string declared = declared_encoding(bytes);
  const encoding said = find_encoding(declared);
  if (said == encoding::windows_1252) return from_single_bytes(bytes, false);
  if (said == encoding::latin_9) return from_single_bytes(bytes, true);

  const utf8_finding finding = look_at_utf8(bytes);
  const std::size_t unsound = finding.unsound;
  if (said != encoding::utf8 && said != encoding::unknown) {
    const bool is_utf8 = unsound == std::string_view::npos;
    warnings.push_back(name + ", line 1: declares the encoding " + declared +
                       " but is 8-bit text; read as " + (is_utf8 ? "UTF-8" : "Windows-1252"));
    return is_utf8 ? std::move(bytes) : from_single_bytes(bytes, false);
  }
  if (unsound == std::string_view::npos) {
    has_zero = finding.has_zero;
    if (said == encoding::unknown)
      warnings.push_back(name + ", line 1: declares the encoding " + qv::qv_one_line(declared, 40) +
                         ", which is not known; read as UTF-8");
    return bytes;
  }
  if (said == encoding::unknown)
    fail(name, 1, "declares the encoding " + qv::qv_one_line(declared, 40) + ", which is not known",
         "save the file as UTF-8");
  fail(name, qv::qv_line_at(bytes, unsound), "a byte sequence is not valid UTF-8",
       "save the file as UTF-8, or declare the encoding that it is in (for example "
       "encoding=\"windows-1252\")");
}

encoding sniff(std::string_view bytes, std::size_t& mark) {
  mark = 0;
  const auto marked = [&mark](std::size_t length, encoding value) {
    mark = length;
    return value;
  };
  if (starts_with_bytes(bytes, {0xEF, 0xBB, 0xBF})) return marked(3, encoding::utf8);
  if (starts_with_bytes(bytes, {0xFF, 0xFE, 0, 0})) return marked(4, encoding::utf32_le);
  if (starts_with_bytes(bytes, {0, 0, 0xFE, 0xFF})) return marked(4, encoding::utf32_be);
  if (starts_with_bytes(bytes, {0xFF, 0xFE})) return marked(2, encoding::utf16_le);
  if (starts_with_bytes(bytes, {0xFE, 0xFF})) return marked(2, encoding::utf16_be);
  // Markup and white space are ASCII: the zero bytes of the first character tell width and order.
  if (bytes.size() >= 4 && bytes[0] != 0 && bytes[1] == 0)
    return bytes[2] == 0 && bytes[3] == 0 ? encoding::utf32_le : encoding::utf16_le;
  if (bytes.size() >= 4 && bytes[0] == 0)
    return bytes[1] == 0 ? encoding::utf32_be : encoding::utf16_be;
  return encoding::unknown;
}

}  // namespace

namespace qv {

std::string qv_to_utf8(const std::string& name, std::string bytes,
                       std::vector<std::string>& warnings) {
  std::size_t mark = 0;
  std::string text;
  bool has_zero = true;  // or not known
  switch (sniff(bytes, mark)) {
    case encoding::utf16_le:
      text = from_utf16(name, std::string_view(bytes).substr(mark), false);
      break;
    case encoding::utf16_be:
      text = from_utf16(name, std::string_view(bytes).substr(mark), true);
      break;
    case encoding::utf32_le:
      text = from_utf32(name, std::string_view(bytes).substr(mark), false);
      break;
    case encoding::utf32_be:
      text = from_utf32(name, std::string_view(bytes).substr(mark), true);
      break;
    case encoding::utf8:
      bytes.erase(0, mark);
      if (const utf8_finding finding = look_at_utf8(bytes);
          finding.unsound != std::string_view::npos) {
        fail(name, qv::qv_line_at(bytes, finding.unsound), "a byte sequence is not valid UTF-8",
             "save the file as UTF-8");
      } else {
        has_zero = finding.has_zero;
      }
      text = std::move(bytes);
      break;
    default:
      text = from_8_bit(name, std::move(bytes), warnings, has_zero);
  }
  if (const auto zero = has_zero ? text.find('\0') : std::string::npos; zero != std::string::npos)
    fail(name, qv::qv_line_at(text, zero), "holds a zero character, which no XML file does",
         "check that it is the file you mean");
  return text;
}

}  // namespace qv
