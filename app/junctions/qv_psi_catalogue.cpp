#include "app/junctions/qv_psi_catalogue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <vector>

#include "app/readers/qv_file.h"
#include "app/readers/qv_input_error.h"
#include "app/readers/qv_json_text.h"

namespace qv {

namespace {

/// The catalogue of app/data, taken in when the program is built.
constexpr const char* indicative_text =
#include "app/junctions/qv_psi_indicative.inc"
    ;

constexpr const char* any_position = "any";

/// Puts values into a catalogue and complains about those that are none.
class catalogue_reader {
 public:
  explicit catalogue_reader(std::string file) : file_(std::move(file)) {}

  qv_psi_catalogue read_json(const std::string& text);
  qv_psi_catalogue read_table(const std::string& text);

 private:
  [[noreturn]] void fail(const std::string& problem, const std::string& advice,
                         std::size_t line = 0) const {
    throw qv_input_error(qv_input_error::kind::bad_input, {file_, line, "", ""}, problem, advice);
  }
  void read_entry(const std::string& type, const nlohmann::json& content);
  void read_row(std::string_view line, std::size_t number);
  void store(const std::string& type, const std::string& insulation, double psi, std::size_t line);

  int find_type(const std::string& label, std::size_t line) const;
  int find_insulation(const std::string& label, std::size_t line) const;
  // Positions without a value of their own take the general one of their type.
  void spread();

  std::string file_;
  qv_psi_catalogue catalogue_;
  std::array<std::optional<float>, qv_psi_catalogue::type_count> general_;
};

std::string in_quotes(const std::string& text) {
  return "\"" + qv_one_line(text, 60) + "\"";
}

std::string listed(const qv_list<std::string>& labels) {
  std::string text;
  for (const std::string& label : labels) text += (text.empty() ? "" : ", ") + label;
  return text;
}

int catalogue_reader::find_type(const std::string& label, std::size_t line) const {
  const auto& labels = qvi_connexion::get_connexion_type_list();
  const int type = labels.find(label);
  if (type < 0)
    fail("there is no thermal bridge type " + in_quotes(label), "use " + listed(labels), line);
  return type;
}

int catalogue_reader::find_insulation(const std::string& label, std::size_t line) const {
  const auto& labels = qvi_composition::get_composition_insulation_list();
  const int position = labels.find(label);
  if (position < 0) {
    fail("there is no position of insulation " + in_quotes(label),
         "use " + listed(labels) + " or " + any_position, line);
  }
  return position;
}

void catalogue_reader::store(const std::string& type, const std::string& insulation, double psi,
                             std::size_t line) {
  const auto row = static_cast<std::size_t>(find_type(type, line));
  const auto value = static_cast<float>(psi);
  if (!std::isfinite(value))
    fail("ψ of " + in_quotes(type) + " is not finite", "write a number", line);
  const bool general = insulation.empty() || insulation == any_position;
  std::optional<float>& place =
      general ? general_[row]
              : catalogue_.values[row][static_cast<std::size_t>(find_insulation(insulation, line))];
  if (place.has_value()) {
    fail("ψ of " + in_quotes(type) + (general ? "" : " with insulation " + in_quotes(insulation)) +
             " is given twice",
         "keep one of them", line);
  }
  place = value;
}

void catalogue_reader::spread() {
  for (std::size_t type = 0; type < general_.size(); ++type) {
    for (auto& value : catalogue_.values[type]) {
      if (!value.has_value()) value = general_[type];
    }
  }
}

void catalogue_reader::read_entry(const std::string& type, const nlohmann::json& content) {
  find_type(type, 0);
  if (content.is_null()) return;
  if (content.is_number()) return store(type, "", content.get<double>(), 0);
  if (!content.is_object()) {
    fail("ψ of " + in_quotes(type) + " is no number",
         "write a number, null, or an object with a number for each position of the insulation");
  }
  for (const auto& [insulation, psi] : content.items()) {
    if (psi.is_null()) continue;
    if (!psi.is_number()) {
      fail(
          "ψ of " + in_quotes(type) + " with insulation " + in_quotes(insulation) + " is no number",
          "write a number or null");
    }
    store(type, insulation, psi.get<double>(), 0);
  }
}

qv_psi_catalogue catalogue_reader::read_json(const std::string& text) {
  qv_expect_json(file_, text);
  const auto document = nlohmann::json::parse(text);
  const auto values = document.find("psi_w_per_mk");
  if (!document.is_object() || values == document.end() || !values->is_object()) {
    fail("has no object \"psi_w_per_mk\"", "name a catalogue of ψ values");
  }
  const auto text_of = [&document](const char* key) {
    const auto found = document.find(key);
    return found != document.end() && found->is_string() ? found->get<std::string>() : "";
  };
  catalogue_.name = text_of("name");
  catalogue_.note = text_of("note");
  for (const auto& [type, content] : values->items()) read_entry(type, content);
  spread();
  return catalogue_;
}

std::string trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\"");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t\r\"") - first + 1));
}

void catalogue_reader::read_row(std::string_view line, std::size_t number) {
  std::vector<std::string> cells;
  for (std::size_t begin = 0; begin <= line.size();) {
    const std::size_t end = std::min(line.find(',', begin), line.size());
    cells.push_back(trimmed(line.substr(begin, end - begin)));
    begin = end + 1;
  }
  if (cells.size() != 3) {
    fail("has " + std::to_string(cells.size()) + " cells in this line", "write type,insulation,psi",
         number);
  }
  double psi = 0;
  const char* const last = cells[2].data() + cells[2].size();
  const auto [end, fault] = std::from_chars(cells[2].data(), last, psi);
  if (fault != std::errc() || end != last) {
    fail(in_quotes(cells[2]) + " is no number", "write ψ in W/(m.K), with a point", number);
  }
  store(cells[0], cells[1], psi, number);
}

qv_psi_catalogue catalogue_reader::read_table(const std::string& text) {
  std::istringstream lines(text);
  std::size_t number = 0;
  bool titled = false;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    const std::string content = trimmed(line);
    if (content.empty() || content.front() == '#') continue;
    if (titled) {
      read_row(line, number);
    } else if (content == "type,insulation,psi") {
      titled = true;
    } else {
      fail("is no catalogue of ψ values",
           "begin a table with the line type,insulation,psi, or JSON with {", number);
    }
  }
  if (!titled) fail("holds no ψ value", "name a catalogue of ψ values");
  spread();
  return catalogue_;
}

}  // namespace

std::optional<float> qv_psi_catalogue::find(
    qvi_connexion::connexion_type type, qvi_composition::composition_insulation insulation) const {
  const auto row = static_cast<std::size_t>(type);
  const auto column = static_cast<std::size_t>(insulation);
  if (row >= values.size() || column >= values[row].size()) return std::nullopt;
  return values[row][column];
}

const qv_psi_catalogue& qv_indicative_psi_catalogue() {
  static const qv_psi_catalogue catalogue =
      qv_parse_psi_catalogue("psi-indicative.json", indicative_text);
  return catalogue;
}

qv_psi_catalogue qv_read_psi_catalogue(const std::string& path) {
  qv_psi_catalogue catalogue =
      qv_parse_psi_catalogue(path, qv_read_file(path, "a catalogue of ψ values"));
  if (catalogue.name.empty()) catalogue.name = path;
  return catalogue;
}

qv_psi_catalogue qv_parse_psi_catalogue(const std::string& name, const std::string& text) {
  constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
  const std::string content = text.starts_with(byte_order_mark) ? text.substr(3) : text;
  const auto first = content.find_first_not_of(" \t\r\n");
  catalogue_reader reader(name);
  const bool is_json = first != std::string::npos && content[first] == '{';
  return is_json ? reader.read_json(content) : reader.read_table(content);
}

}  // namespace qv
