#pragma once

#include <string>
#include <vector>

namespace qv {

/// Turns the bytes of an XML file into UTF-8 without byte-order mark.
///
/// A mark decides; without one, zero bytes tell UTF-16 and UTF-32; else the XML declaration names
/// the encoding: UTF-8 (also when it names none), US-ASCII, ISO-8859-1 (read as Windows-1252, of
/// which it is a part but for control codes), ISO-8859-15 or Windows-1252.
///
/// A declaration that the bytes contradict, and an encoding that is not known while the bytes are
/// sound UTF-8, give a warning and the file is read as what it is. Text declared as UTF-16 or
/// UTF-32 that is 8-bit is UTF-8, or Windows-1252 when it is no sound UTF-8.
///
/// `name` is the file in messages. Throws `qv_input_error` (bad input) with the line of a byte
/// sequence that is not valid, for a zero character, for an encoding that is not known, and for
/// text that is empty or plainly no XML.
std::string qv_to_utf8(const std::string& name, std::string bytes,
                       std::vector<std::string>& warnings);

}  // namespace qv
