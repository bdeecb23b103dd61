#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <memory>
#include <utility>

#include "app/commands/qv_commands.h"
#include "app/commands/qv_context_option.h"
#include "app/commands/qv_progress.h"
#include "app/pictures/qv_canvas.h"
#include "app/pictures/qv_picture.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/readers/qv_input_error.h"
#include "app/report/qv_output_folder.h"
#include "app/study/qv_study.h"
#include "bim/envelope/qvi_wall.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

struct picture_arguments {
  std::string model;
  std::string file;
  std::string view = "iso";
  std::string color = "contact-type";
  std::vector<std::string> selected;
  std::string hovered;
  int storey = -1;
  std::string size = "1280x800";
  bool no_legend = false;
  std::optional<double> north;
  qv_context_options context;
};

constexpr std::array<std::pair<const char*, qv_picture_view>, 7> views = {
    {{"iso", qv_picture_view::iso},
     {"north", qv_picture_view::north},
     {"east", qv_picture_view::east},
     {"south", qv_picture_view::south},
     {"west", qv_picture_view::west},
     {"plan", qv_picture_view::plan},
     {"perspective", qv_picture_view::perspective}}};

constexpr std::array<std::pair<const char*, qv_picture_color>, 7> colors = {
    {{"contact-type", qv_picture_color::contact_type},
     {"u", qv_picture_color::u},
     {"zone", qv_picture_color::zone},
     {"storey", qv_picture_color::storey},
     {"type", qv_picture_color::type},
     {"material", qv_picture_color::material},
     {"thermal-bridges", qv_picture_color::thermal_bridges}}};

// The value of a word that stands in the table.
template <class Table>
auto value_of(const Table& table, const std::string& word) {
  for (const auto& [name, value] : table)
    if (word == name) return value;
  return table.front().second;
}

template <class Table>
std::vector<std::string> words_of(const Table& table) {
  std::vector<std::string> words;
  words.reserve(table.size());
  for (const auto& entry : table) words.emplace_back(entry.first);
  return words;
}

std::string join(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : "|") + word;
  return text;
}

// Understands "1280x800".
bool read_size(const std::string& text, int& width, int& height) {
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, width);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != 'x') return false;
  const auto second = std::from_chars(first.ptr + 1, end, height);
  return second.ec == std::errc() && second.ptr == end;
}

std::string complaint_about_size(const std::string& text) {
  int width = 0;
  int height = 0;
  if (!read_size(text, width, height))
    return "\"" + text + "\" is no size; write it as WIDTHxHEIGHT, in pixels";
  const auto fits = [](int side) {
    return side >= qv_picture_options::smallest_side && side <= qv_frame_buffer::largest_side;
  };
  if (!fits(width) || !fits(height))
    return "\"" + text + "\": each side is " + std::to_string(qv_picture_options::smallest_side) +
           " to " + std::to_string(qv_frame_buffer::largest_side) + " pixels";
  // Sides are small enough for the product.
  if (width * height > qv_frame_buffer::largest_count)
    return "\"" + text + "\" has more than " + std::to_string(qv_frame_buffer::largest_count) +
           " pixels";
  return {};
}

qv_item& find_item(const qv_picture_subject& subject, const std::string& id,
                   const std::string& model) {
  const auto found = subject.items_by_id.find(id);
  if (found != subject.items_by_id.end()) return *found->second;
  throw qv_input_error(qv_input_error::kind::bad_input, {model, 0, "", ""},
                       "has nothing with the id \"" + qv_one_line(id) + "\"",
                       "`qv study` lists ids in walls.csv, openings.csv and spaces.csv");
}

// The pointer rests on an item: of a wall, on its faces, which are what a view picks.
void hover(qv_item& item) {
  item.set_mouseover(true);
  if (!item.has_type("wall")) return;
  const auto& wall = static_cast<const qvi_wall&>(item);
  const auto first_of = [](qvi_polygon* pierced, qvi_polygon* plain) {
    return pierced != nullptr ? pierced : plain;
  };
  for (qvi_polygon* face : {first_of(wall.get_pierced_face(), wall.get_face()),
                            first_of(wall.get_pierced_face_0(), wall.get_face_0()),
                            first_of(wall.get_pierced_face_1(), wall.get_face_1())})
    if (face != nullptr) face->set_mouseover(true);
}

qv_picture_options options_of(const picture_arguments& arguments) {
  qv_picture_options options;
  options.view = value_of(views, arguments.view);
  options.color = value_of(colors, arguments.color);
  if (arguments.storey >= 0) options.storey = arguments.storey;
  options.with_key = !arguments.no_legend;
  read_size(arguments.size, options.width, options.height);
  return options;
}

int run_picture(const picture_arguments& arguments) {
  const std::filesystem::path file = arguments.file;
  // Before the work, so that a wrong place, or a machine that cannot draw, is told at once.
  qv_output_folder folder(file.has_parent_path() ? file.parent_path() : ".");
  qv_picture_maker maker;
  qv_picture picture;
  std::vector<std::string> context_notes;
  {
    qv_progress progress;
    const auto announce = [&progress](int step, int count, const char* what) {
      progress.begin_step(step, count, what);
    };
    announce(1, 5, "reading the model");
    qv_gbxml_model model = qv_read_gbxml(arguments.model);
    context_notes = qv_add_context(model, arguments.context);
    qv_study_options options;
    options.north = arguments.north;
    const qv_model_findings findings = qv_compute_model(model, options, announce);
    qv_study_results study = qv_gather_study(model, findings);
    if (arguments.north) study.location.azimuth = arguments.north;
    announce(5, 5, "drawing the picture");
    const qv_picture_subject subject = qv_make_picture_subject(model, study);
    for (const std::string& id : arguments.selected)
      find_item(subject, id, arguments.model).set_selected(true);
    if (!arguments.hovered.empty()) hover(find_item(subject, arguments.hovered, arguments.model));
    picture = maker.draw(subject, options_of(arguments), arguments.model);
    folder.stage(file.filename().string(), qv_encode_png(picture.pixels));
  }
  folder.commit();
  qv_print_notes(context_notes);
  std::string text;
  for (const std::string& note : picture.notes) text += "Note: " + note + "\n";
  qv_print(text + "Written to " + arguments.file + "\n");
  return qv_exit_success;
}

}  // namespace

void qv_add_picture_command(CLI::App& program, qv_command_action& action) {
  const auto arguments = std::make_shared<picture_arguments>();
  CLI::App* command = program.add_subcommand("picture", "Draw a picture of a gbXML model");
  command->add_option("MODEL", arguments->model, "The model, a gbXML file")
      ->required()
      ->option_text(" ");
  command->add_option("--out", arguments->file, "The picture to write, a PNG file")
      ->required()
      ->option_text("FILE");
  command
      ->add_option("--view", arguments->view,
                   "Whence: from the south-west, square to a side of the model,\n"
                   "from above; with --storey, plan is cut through its rooms")
      ->check(CLI::IsMember(words_of(views)))
      ->option_text(join(words_of(views)));
  command
      ->add_option("--color", arguments->color,
                   "What the colours tell: what walls separate, U values, the zone\n"
                   "or storey of the room behind, the type of element, its composition,\n"
                   "or thermal bridges as lines over a pale model")
      ->check(CLI::IsMember(words_of(colors)))
      ->option_text(join(words_of(colors)));
  command
      ->add_option("--select", arguments->selected,
                   "Show these as selected: walls, openings, rooms, zones, buildings,\n"
                   "compositions, thermal bridges, … by id")
      ->option_text("ID…");
  command->add_option("--hover", arguments->hovered, "Show this as under the pointer")
      ->option_text("ID");
  command
      ->add_option("--storey", arguments->storey,
                   "Only the rooms of this storey, from 0 at the bottom,\n"
                   "without what lies over them")
      ->check(CLI::NonNegativeNumber)
      ->option_text("N");
  command->add_option("--size", arguments->size, "In pixels; 1280x800 unless given")
      ->check(complaint_about_size)
      ->option_text("WxH");
  command->add_flag("--no-legend", arguments->no_legend, "Leave out title and legend");
  command
      ->add_option("--north", arguments->north,
                   "Degrees clockwise from true north of the model's +Y,\n"
                   "instead of what the file says")
      ->option_text("ANGLE");
  qv_add_context_options(*command, arguments->context);
  command->footer(
      "Examples:\n"
      "  qv picture house.xml --out house.png\n"
      "  qv picture house.xml --out south.png --view south --color u\n"
      "  qv picture house.xml --out plan.png --view plan --storey 0 --color zone\n"
      "  qv picture house.xml --out wall.png --select su-12 --hover op-3");
  command->callback([&action, arguments] {
    if (arguments->model.empty()) throw CLI::ValidationError("MODEL is an empty name");
    if (std::filesystem::path(arguments->file).filename().empty())
      throw CLI::ValidationError("--out is no name of a file");
    if (arguments->north && !std::isfinite(*arguments->north))
      throw CLI::ValidationError("--north is no angle");
    action = [arguments] { return run_picture(*arguments); };
  });
}

}  // namespace qv
